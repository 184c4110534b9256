#include "support/WritingLine.h"

#include "wire/EscapedText.h"

#include <algorithm>
#include <limits>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

constexpr std::size_t mostSteps = 1000;
constexpr std::size_t mostBytes = 2000000;
constexpr std::size_t shownSteps = 6;

/// The bytes escaped; of more than 20 equal ones in a row only the first, and their number.
std::string Shown(const std::string& bytes) {
    std::string shown;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = std::min(bytes.find_first_not_of(bytes[at], at), bytes.size()) - at;
        shown += end > 20 ? Escape(bytes.substr(at, 1)) + "{" + std::to_string(end) + " times}"
                          : Escape(bytes.substr(at, end));
        at += end;
    }
    return shown;
}

} // namespace

void WritingLine::Step(const std::string& step) {
    steps.push_back(step);
    if (steps.size() >= mostSteps || sent.size() > mostBytes) {
        endless = true;
        throw Ended();
    }
}

void WritingLine::Send(const std::string& bytes) {
    sent += bytes;
    Step("send " + Shown(bytes));
}

void WritingLine::Pause(std::chrono::milliseconds duration) {
    paused += duration;
    Step("pause " + std::to_string(duration.count()) + " ms");
}

void WritingLine::Hold() {
    steps.emplace_back("hold");
    endless = true;
    throw Ended();
}

void WritingLine::AwaitBody() {
    Step("await the body");
}

void WritingLine::ReadBody(std::size_t most) {
    const bool all = most == std::numeric_limits<std::size_t>::max();
    Step("read " + (all ? "all" : std::to_string(most)) + " of the body");
}

void WritingLine::Reset() {
    Step("reset");
}

std::string WritingLine::Script() const {
    std::string script;
    for (std::size_t i = 0; i < std::min(steps.size(), shownSteps); ++i) {
        script += "  " + steps[i] + "\n";
    }
    if (steps.size() > shownSteps) {
        script += endless ? "  and so on without end"
                          : "  and " + std::to_string(steps.size() - shownSteps) + " more steps";
        script +=
            endless ? "\n" : ", all pauses together " + std::to_string(paused.count()) + " ms\n";
    }
    return script;
}

const std::string& WritingLine::Sent() const {
    return sent;
}

bool WritingLine::WasReset() const {
    return !steps.empty() && steps.back() == "reset";
}

bool WritingLine::IsEndless() const {
    return endless;
}

void PlayUsually(const Fault& fault, WritingLine& line) {
    Occasion occasion;
    occasion.healthy = Ok();
    occasion.id = "P1";
    occasion.untilLimit = ClientLimit("/xp?op=off&id=P1");
    try {
        fault.play(line, occasion);
    } catch (const Line::Ended&) { // NOLINT(bugprone-empty-catch)
        // As the line told it.
    }
}

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
