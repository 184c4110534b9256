#pragma once

#include <set>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Whether the simulator's fault of this name goes on until the client's time limit ends the call.
inline bool EndsWithTheLimit(const std::string& fault) {
    static const std::set<std::string> faults = {
        "length-missing-open", "chunk-trailers-endless", "upload-unread", "silence",
        "stall-in-head",       "stall-in-body",          "dribble",       "just-after-limit",
        "body-endless",        "interim-stall"};
    return faults.count(fault) > 0;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
