#pragma once

#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {

/// Appends HalcyrREST::EncodeURL(value) to an address, without a string for it.
void AppendEncoded(std::string& address, const std::string& value);

} // namespace TavoRemotingLib
} // namespace Brenmoor
