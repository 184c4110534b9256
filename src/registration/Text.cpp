#include "registration/Text.h"

#include <locale>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

bool IsClassicSpace(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

template <typename IsSpace>
std::string_view TrimmedOf(std::string_view text, IsSpace isSpace) {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

std::string_view Trimmed(std::string_view text) {
    const std::locale locale;
    // The usual one, of which it is known what looking up its facet would tell.
    if (locale == std::locale::classic()) {
        return TrimmedOf(text, &IsClassicSpace);
    }
    const auto& characters = std::use_facet<std::ctype<char>>(locale);
    return TrimmedOf(text, [&characters](char character) {
        return characters.is(std::ctype_base::space, character);
    });
}

bool HasBraces(std::string_view trimmed) {
    return !trimmed.empty() && trimmed.front() == '{' && trimmed.back() == '}';
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
