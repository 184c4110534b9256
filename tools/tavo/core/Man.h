#pragma once

#include "core/Description.h"

namespace Brenmoor {
namespace Tavo {

/// The manual page of the program, in roff.
std::string ProgramPage(const std::vector<Parameter>& common, const std::vector<Command>& commands,
                        const std::string& version);

/// The manual page "tavo-COMMAND".
std::string CommandPage(const Command& command, const std::string& version);

} // namespace Tavo
} // namespace Brenmoor
