#include "Fault.h"
#include "Line.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

void SayNothing(Line&, const Reply&) {}

void Reset(Line& line, const Reply&) {
    line.Reset();
}

void Stall(Line& line, const Reply&) {
    line.Hold();
}

void CutInBody(Line& line, const Reply& healthy) {
    line.Send(HeadText(healthy) + healthy.body.substr(0, healthy.body.size() / 2));
}

void NotFoundStatus(Line& line, const Reply&) {
    Reply reply;
    reply.status = 404;
    reply.reason = "Not Found";
    line.Send(ReplyText(reply));
}

} // namespace

const std::vector<Fault>& FaultCatalogue() {
    static const std::vector<Fault> catalogue = {
        {"no-reply", "status line", "no reply at all, then the connection is closed", When::InReply,
         SayNothing},
        {"status-404", "status line", "404 Not Found with an empty body", When::InReply,
         NotFoundStatus},
        {"body-cut", "framing", "the connection is closed in the middle of the body", When::InReply,
         CutInBody},
        {"reset-before-body", "connection", "the connection is reset once the head has come",
         When::BeforeBody, Reset},
        {"silence", "timing", "the request is read, and nothing is ever answered", When::InReply,
         Stall},
    };
    return catalogue;
}

const Fault& FindFault(const std::string& name) {
    const auto& catalogue = FaultCatalogue();
    const auto found = std::find_if(catalogue.begin(), catalogue.end(),
                                    [&](const Fault& fault) { return fault.name == name; });
    if (found == catalogue.end()) {
        throw BadRequest("There is no fault '" + name + "'");
    }
    return *found;
}

} // namespace TavoSimulator
} // namespace Brenmoor
