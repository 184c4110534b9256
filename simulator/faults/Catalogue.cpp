#include "Parts.h"

#include <algorithm>
#include <istream>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// What the client waits for any reply, and what it waits for a poll's beyond the poll's own time.
constexpr std::chrono::seconds usualLimit(301);
constexpr std::chrono::seconds grace(61);
/// The longest that is waited for at all; far beyond the longest poll that a client can ask for.
constexpr std::int64_t longestPollSeconds = std::int64_t{100} * 24 * 3600;

std::vector<Fault> MadeCatalogue() {
    const std::pair<const char*, std::vector<Fault>> groups[] = {
        {"status line", StatusLineFaults()},
        {"headers", HeaderFaults()},
        {"framing", FramingFaults()},
        {"chunks", ChunkFaults()},
        {"connection", ConnectionFaults()},
        {"timing", TimingFaults()},
        {"size", SizeFaults()},
        {"encoding", EncodingFaults()},
        {"interim and redirect", InterimFaults()},
        {"JSON", JsonFaults()},
        {"members of a poll's reply", PollFaults()},
        {"commands", CommandFaults()},
        {"position", PositionFaults()},
    };
    std::vector<Fault> catalogue;
    for (const auto& [group, faults] : groups) {
        for (const Fault& fault : faults) {
            catalogue.push_back(fault);
            catalogue.back().group = group;
        }
    }
    return catalogue;
}

} // namespace

const std::vector<Fault>& FaultCatalogue() {
    static const std::vector<Fault> catalogue = MadeCatalogue();
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

std::chrono::milliseconds ClientLimit(const std::string& target) {
    std::istream none(nullptr);
    const Request request("GET", target, none);
    const std::string* const operation = request.Find("op");
    if (operation == nullptr || *operation != "poll") {
        return usualLimit;
    }
    std::int64_t asked = 0;
    try {
        asked = request.Number("timeout", 0);
    } catch (const Refusal&) {
        return grace; // as if it had not asked for any time
    }
    const std::int64_t seconds = asked / 1000 + (asked % 1000 > 0 ? 1 : 0);
    return std::chrono::seconds(std::min(seconds, longestPollSeconds)) + grace;
}

} // namespace TavoSimulator
} // namespace Brenmoor
