#pragma once

#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

/// Ends the program with that text, as a finding, unless the condition holds.
void Require(bool condition, const char* text);

/// What must hold for the tag of every command that can be read.
void RequireTag(const std::string& tag);

/// What every target is: it makes one call or a few with the input and checks what must hold for
/// every input. An exception that it lets pass is a finding too.
void Try(const std::string& input);

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
