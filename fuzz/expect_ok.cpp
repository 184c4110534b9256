// The lines of any text as header lines: judged as the contract says, and never otherwise.

#include "Fuzz.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <stdexcept>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = text.find('\n', begin);
        const std::size_t size = end == std::string::npos ? end : end + 1 - begin;
        lines.push_back(text.substr(begin, size));
        begin += lines.back().size();
    }
    return lines;
}

/// The message of the exception that is due; empty when none is.
std::string Expected(const std::vector<std::string>& lines) {
    const std::string blanks = " \t\n\v\f\r";
    for (const std::string& line : lines) {
        if (line.substr(0, 4) != "HTTP") {
            continue;
        }
        const std::string status = line.substr(0, line.find_last_not_of(blanks) + 1);
        const bool isOk = status.size() >= 3 && status.substr(status.size() - 3) == " OK";
        return isOk ? "" : "For Label, the HTTP header did not return OK: " + status;
    }
    return "For Label, no HTTP header was returned";
}

} // namespace

void Try(const std::string& input) {
    const std::vector<std::string> lines = Lines(input);
    std::string message;
    try {
        ExpectOKHeaders(lines, "Label");
    } catch (const std::runtime_error& e) {
        message = e.what();
    }
    // An exception's message ends at a zero byte.
    const std::string expected = Expected(lines);
    Require(message == expected.substr(0, expected.find('\0')),
            "the first status line alone decides");
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
