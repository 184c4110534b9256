#include "core/Style.h"

#include <cstdlib>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

namespace {

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

bool IsTerminal(int descriptor) {
    return isatty(descriptor) == 1;
}

Style::Style(int descriptor)
    : isColoured(IsTerminal(descriptor) && Variable("NO_COLOR").empty() &&
                 Variable("TERM") != "dumb") {}

std::string Style::Bold(const std::string& text) const {
    return Coloured("1", text);
}

std::string Style::Red(const std::string& text) const {
    return Coloured("31", text);
}

std::string Style::Green(const std::string& text) const {
    return Coloured("32", text);
}

std::string Style::Coloured(const char* code, const std::string& text) const {
    return isColoured ? std::string("\033[") + code + "m" + text + "\033[0m" : text;
}

} // namespace Tavo
} // namespace Brenmoor
