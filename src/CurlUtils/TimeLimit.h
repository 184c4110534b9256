#pragma once

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

/// How long making the connection may take. An int, as it always was: on the 32-bit target that is
/// the width of the long which libcurl reads, and elsewhere the value is passed in a whole
/// register.
constexpr int connectLimitSeconds = 10;

/// How long libcurl may take for a whole exchange whose limit is `seconds`: deliberately one
/// second more, so that a reply sent at the very limit still arrives. The greatest `long` wraps
/// to a negative value, which libcurl refuses.
inline long WholeExchangeLimit(long seconds) {
    return static_cast<long>(static_cast<unsigned long>(seconds) + 1UL);
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
