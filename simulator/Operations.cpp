#include "Operations.h"
#include "Control.h"
#include "EscapedText.h"
#include "Poll.h"
#include "Uploads.h"

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

} // namespace

Reply AnswerOperation(World& world, const Request& request) {
    const std::string& name = request.Filled("op");
    const auto* const found =
        std::find_if(std::begin(operations), std::end(operations),
                     [&](const Operation& operation) { return operation.name == name; });
    if (found == std::end(operations)) {
        throw Refusal(404, "Not Found", "Unknown operation '" + Escape(name) + "'");
    }
    RequireMethod(request, found->method);
    return found->handler(world, request);
}

} // namespace TavoSimulator
} // namespace Brenmoor
