#include "Operations.h"
#include "Orders.h"
#include "Poll.h"
#include "Uploads.h"
#include "wire/EscapedText.h"

#include <algorithm>
#include <iterator>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

struct Operation {
    const char* name;
    const char* method;
    Reply (*handler)(World& world, const Request& request);
};

constexpr Operation operations[] = {
    {"off", "GET", AnswerOff},
    {"pwr", "GET", AnswerPower},
    {"script", "GET", AnswerScript},
    {"metadone", "GET", AnswerMetaDone},
    {"offdelay", "GET", AnswerOffDelay},
    {"poll", "GET", AnswerPoll},
    {"jar", "POST", AnswerJar},
    {"reply", "POST", AnswerReply},
    {"rawpacket", "POST", AnswerRawPacket},
    {"uploadlegacy", "POST", AnswerUpload},
    {"upload", "POST", AnswerUpload},
    {"meta", "POST", AnswerMeta},
};

const Operation* FindOperation(const std::string& name) {
    const auto* const found =
        std::find_if(std::begin(operations), std::end(operations),
                     [&](const Operation& operation) { return operation.name == name; });
    return found == std::end(operations) ? nullptr : found;
}

} // namespace

bool IsOperation(const std::string& name) {
    return FindOperation(name) != nullptr;
}

Reply AnswerOperation(World& world, const Request& request) {
    const std::string& name = request.Filled("op");
    const Operation* const found = FindOperation(name);
    if (found == nullptr) {
        throw NotFound("Unknown operation '" + Escape(name) + "'");
    }
    RequireMethod(request, found->method);
    const Reply reply = found->handler(world, request);
    for (const auto& [parameter, value] : request.parameters) {
        if (parameter == "id") {
            world.payloads.Seen(value);
        }
    }
    return reply;
}

} // namespace TavoSimulator
} // namespace Brenmoor
