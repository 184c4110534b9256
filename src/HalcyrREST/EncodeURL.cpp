#include <MirrinFramework/Ultos.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <cctype>

namespace Brenmoor {
namespace TavoRemotingLib {

std::string HalcyrREST::EncodeURL(const std::string& value) {
    static const std::string unreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~";
    if (value.find_first_not_of(unreserved) == std::string::npos) {
        return value;
    }
    std::string escaped;
    for (const char character : value) {
        const auto byte = static_cast<unsigned char>(character);
        // isalnum() comes first on purpose: the letters of the process's C locale pass.
        if (std::isalnum(byte) != 0 || unreserved.find(character) != std::string::npos) {
            escaped += character;
        } else {
            escaped += '%';
            escaped += MirrinFramework::ultos(byte, 16, 2, 0);
        }
    }
    return escaped;
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
