#include "registration/Text.h"

#include <locale>

namespace Brenmoor {
namespace TavoRemotingLib {

std::string_view Trimmed(std::string_view text) {
    const std::locale locale;
    const auto& characters = std::use_facet<std::ctype<char>>(locale);
    const char* end = text.data() + text.size();
    const char* const begin = characters.scan_not(std::ctype_base::space, text.data(), end);
    while (end != begin && characters.is(std::ctype_base::space, end[-1])) {
        --end;
    }
    return {begin, static_cast<std::size_t>(end - begin)};
}

bool HasBraces(std::string_view trimmed) {
    return !trimmed.empty() && trimmed.front() == '{' && trimmed.back() == '}';
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
