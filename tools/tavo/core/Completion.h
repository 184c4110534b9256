#pragma once

#include "core/Description.h"

namespace Brenmoor {
namespace Tavo {

/// Completion scripts: for bash, to be sourced, and for zsh, a file "_tavo" in its fpath.
std::string BashCompletion(const std::vector<Parameter>& common,
                           const std::vector<Command>& commands);
std::string ZshCompletion(const std::vector<Parameter>& common,
                          const std::vector<Command>& commands);

} // namespace Tavo
} // namespace Brenmoor
