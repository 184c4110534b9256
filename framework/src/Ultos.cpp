#include <MirrinFramework/Ultos.h>

#include <algorithm>
#include <stdexcept>

namespace Brenmoor {
namespace MirrinFramework {

std::string ultos(unsigned long value, unsigned base, unsigned width, unsigned flags) {
    if (base < 2 || base > 36) {
        throw std::invalid_argument("ultos: base " + std::to_string(base) + " is not 2 to 36");
    }
    const char* const digits = (flags & 1U) != 0 ? "0123456789abcdefghijklmnopqrstuvwxyz"
                                                 : "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::string text;
    do {
        text += digits[value % base];
        value /= base;
    } while (value > 0);
    text.append(width > text.size() ? width - text.size() : 0, '0');
    std::reverse(text.begin(), text.end());
    return text;
}

} // namespace MirrinFramework
} // namespace Brenmoor
