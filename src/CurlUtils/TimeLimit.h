#pragma once

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

/// How long libcurl may take for a whole exchange whose limit is `seconds`: deliberately one
/// second more, so that a reply sent at the very limit still arrives. The greatest `long` wraps
/// to a negative value, which libcurl refuses.
inline long WholeExchangeLimit(long seconds) {
    return static_cast<long>(static_cast<unsigned long>(seconds) + 1UL);
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
