#pragma once

#include <string_view>

namespace Brenmoor {
namespace TavoRemotingLib {

/// The text without white space at its ends, as the process's global locale has it. The facet is
/// looked up once and nothing is copied, since every reply and every command passes through here.
std::string_view Trimmed(std::string_view text);

/// Whether a trimmed text begins and ends as a JSON object does.
bool HasBraces(std::string_view trimmed);

} // namespace TavoRemotingLib
} // namespace Brenmoor
