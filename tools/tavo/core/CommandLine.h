#pragma once

#include "core/Description.h"

#include <string>
#include <vector>

namespace Brenmoor {
namespace Tavo {

/// What a command line asks for.
struct Request {
    enum class Kind { Run, Help, Version };

    Kind kind = Kind::Run;
    const Command* command = nullptr; ///< null for help about the program and for the version
};

/// Reads the command line into the targets of the parameters. Throws UsageError; `command` is then
/// the one that it is about, or null.
Request ReadCommandLine(const std::vector<std::string>& arguments,
                        const std::vector<Parameter>& common, const std::vector<Command>& commands,
                        const Command*& command);

} // namespace Tavo
} // namespace Brenmoor
