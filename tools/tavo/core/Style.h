#pragma once

#include <string>

namespace Brenmoor {
namespace Tavo {

/// True when the descriptor is a terminal.
bool IsTerminal(int descriptor);

/// Colours for one descriptor: none unless it is a terminal, and none with NO_COLOR or a dumb
/// terminal.
class Style {
public:
    explicit Style(int descriptor);

    std::string Bold(const std::string& text) const;
    std::string Red(const std::string& text) const;
    std::string Green(const std::string& text) const;

private:
    std::string Coloured(const char* code, const std::string& text) const;

    const bool isColoured;
};

} // namespace Tavo
} // namespace Brenmoor
