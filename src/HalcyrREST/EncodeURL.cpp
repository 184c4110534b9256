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

void AppendByte(std::string& address, char character) {
    const auto byte = static_cast<unsigned char>(character);
    // The letters of the process's C locale pass, too, deliberately.
    if (IsUnreserved(character) || std::isalnum(byte) != 0) {
        address += character;
    } else {
        address += '%';
        address += MirrinFramework::ultos(byte, 16, 2, 0);
    }
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
        AppendByte(address, value[next]);
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
