#pragma once

#include <MirrinFramework/Logger.h>

#include <set>
#include <sstream>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Holds the stream, which must exist before the Logger that writes to it.
struct CapturedStream {
    mutable std::ostringstream stream;
};

/// Keeps what is written to it; its levels are chosen one by one.
class CapturingLogger : private CapturedStream, public MirrinFramework::Logger {
public:
    explicit CapturingLogger(std::set<int> enabledLevels = {})
        : Logger(CapturedStream::stream, 0), levels(std::move(enabledLevels)) {}

    bool IsLevelEnabled(int level) const override {
        return levels.count(level) > 0;
    }

    std::string Text() {
        const Locked locked(*this);
        return stream.str();
    }

    /// For tests that set flags or a locale on the host's stream.
    std::ostream& Stream() {
        return stream;
    }

private:
    const std::set<int> levels;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
