#pragma once

#include <vector>

namespace Brenmoor {
namespace Tavo {

/// What the program's exit code says. The numbers are part of its interface.
enum class ExitCode {
    Done = 0,
    Refused = 1,
    Usage = 2,
    NoConnection = 3,
    TimedOut = 4,
    BadReply = 5,
    Local = 6,
    Other = 7
};

struct ExitCodeRow {
    ExitCode code;
    const char* meaning;
};

/// Every exit code with its meaning, in order; help, manual pages and documents show this table.
const std::vector<ExitCodeRow>& ExitCodes();

} // namespace Tavo
} // namespace Brenmoor
