#pragma once

#include "core/Description.h"

#include <string>
#include <vector>

namespace Brenmoor {
namespace Tavo {

/// The program: reads the command line, runs what it names, tells of a failure in one line on
/// standard error, and returns the exit code.
int Run(const std::vector<std::string>& arguments, const std::vector<Command>& commands);

} // namespace Tavo
} // namespace Brenmoor
