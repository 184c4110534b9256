#pragma once

#include "core/Description.h"
#include "core/Style.h"

namespace Brenmoor {
namespace Tavo {

/// Help about the program: its commands, common options, environment and exit codes.
std::string ProgramHelp(const std::vector<Parameter>& common, const std::vector<Command>& commands,
                        const Style& style);

/// Help about one command.
std::string CommandHelp(const Command& command, const Style& style);

} // namespace Tavo
} // namespace Brenmoor
