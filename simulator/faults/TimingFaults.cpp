#include "Parts.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

constexpr std::chrono::milliseconds step(100);
constexpr std::chrono::milliseconds margin(1000);

/// One byte at a time, each after a pause.
void Dribble(Line& line, const std::string& text) {
    for (const char byte : text) {
        line.Pause(step);
        line.Send(std::string(1, byte));
    }
}

void Silence(Line& line, const Occasion&) {
    line.Hold();
}

std::string FirstLines(const Occasion& occasion) {
    return StatusText(occasion.healthy) + TypeText(occasion.healthy);
}

std::string HalfABody(const Occasion& occasion) {
    return HeadText(occasion.healthy) + FirstHalf(occasion.healthy.body);
}

void SlowHead(Line& line, const Occasion& occasion) {
    Dribble(line, HeadText(occasion.healthy));
    line.Send(occasion.healthy.body);
}

void SlowBody(Line& line, const Occasion& occasion) {
    line.Send(HeadText(occasion.healthy));
    Dribble(line, occasion.healthy.body);
}

void EndlessDribble(Line& line, const Occasion& occasion) {
    line.Send(HeadText(occasion.healthy, LengthText(1000000)));
    for (;;) {
        Dribble(line, "x");
    }
}

void JustBeforeTheLimit(Line& line, const Occasion& occasion) {
    line.Pause(std::max(occasion.untilLimit - margin, std::chrono::milliseconds(0)));
    line.Send(ReplyText(occasion.healthy));
}

void JustAfterTheLimit(Line& line, const Occasion& occasion) {
    line.Pause(occasion.untilLimit + margin);
    line.Send(ReplyText(occasion.healthy));
}

} // namespace

std::vector<Fault> TimingFaults() {
    return {
        {"silence", "the request is read, and nothing is ever answered", When::InReply, Silence},
        {"stall-in-head", "the reply stops in the middle of its head", When::InReply,
         SendsThenHolds(FirstLines)},
        {"stall-in-body", "the reply stops in the middle of its body", When::InReply,
         SendsThenHolds(HalfABody)},
        {"slow-head", "the reply's head comes by one byte in 0.1 s", When::InReply, SlowHead},
        {"slow-body", "the reply's body comes by one byte in 0.1 s", When::InReply, SlowBody},
        {"dribble", "a body of 1 MB comes by one byte in 0.1 s", When::InReply, EndlessDribble},
        {"just-before-limit", "the reply comes 1 s before the client gives up", When::InReply,
         JustBeforeTheLimit},
        {"just-after-limit", "the reply would come 1 s after the client gave up", When::InReply,
         JustAfterTheLimit},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
