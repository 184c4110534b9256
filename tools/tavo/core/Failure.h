#pragma once

#include "core/ExitCode.h"

#include <stdexcept>
#include <string>

namespace Brenmoor {
namespace Tavo {

/// The command line is wrong. The hint says what to try instead.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const std::string& message, const std::string& hintText = {})
        : std::runtime_error(message), hint(hintText) {}

    const std::string hint;
};

/// Something on this side is in the way: a file, standard output.
class LocalError : public std::runtime_error {
public:
    LocalError(const std::string& message, const std::string& hintText)
        : std::runtime_error(message), hint(hintText) {}

    const std::string hint;
};

/// A LocalError for what errno tells of a file.
LocalError FileError(const std::string& action, const std::string& path, int error);

/// What is told of a failure: one line that says what failed, where, and what to try.
struct Failure {
    ExitCode code;
    std::string what;
    std::string hint;

    /// Without a line end; control characters are escaped.
    std::string Line() const;
};

/// The only place where exceptions, the library's and this program's, become exit codes.
/// `server` is the address that was talked to.
Failure FailureOf(const std::exception& error, const std::string& server);

} // namespace Tavo
} // namespace Brenmoor
