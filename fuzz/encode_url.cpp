// Any value can be read back from its escaped form, which holds nothing that means something in an
// address.

#include "Fuzz.h"

#include <TavoRemotingLib/HalcyrREST.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

const std::string digits = "0123456789ABCDEF";
const std::string unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~";

std::string Decode(const std::string& escaped) {
    std::string value;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '%') {
            Require(unreserved.find(escaped[i]) != std::string::npos, "only unreserved bytes pass");
            value += escaped[i];
            continue;
        }
        Require(i + 2 < escaped.size(), "an escape has two digits");
        const std::size_t high = digits.find(escaped[++i]);
        const std::size_t low = digits.find(escaped[++i]);
        Require(high != std::string::npos && low != std::string::npos,
                "an escape's digits are capital hexadecimal ones");
        const char byte = static_cast<char>(high * 16 + low);
        Require(unreserved.find(byte) == std::string::npos, "unreserved bytes are not escaped");
        value += byte;
    }
    return value;
}

} // namespace

void Try(const std::string& input) {
    Require(Decode(HalcyrREST::EncodeURL(input)) == input, "an escaped value decodes back");
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
