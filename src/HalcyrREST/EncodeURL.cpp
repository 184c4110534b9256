#include "HalcyrREST/EncodeURL.h"

#include <MirrinFramework/Ultos.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <cctype>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

constexpr bool IsUnreserved(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '-' || character == '_' ||
           character == '.' || character == '~';
}

} // namespace

void AppendEncoded(std::string& address, const std::string& value) {
    // Most values need no escape at all.
    std::size_t next = 0;
    while (next < value.size() && IsUnreserved(value[next])) {
        ++next;
    }
    address.append(value, 0, next);
    for (; next < value.size(); ++next) {
        const auto byte = static_cast<unsigned char>(value[next]);
        // The letters of the process's C locale pass, too, deliberately.
        if (IsUnreserved(value[next]) || std::isalnum(byte) != 0) {
            address += value[next];
        } else {
            address += '%';
            address += MirrinFramework::ultos(byte, 16, 2, 0);
        }
    }
}

std::string HalcyrREST::EncodeURL(const std::string& value) {
    std::string encoded;
    encoded.reserve(value.size());
    AppendEncoded(encoded, value);
    return encoded;
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
