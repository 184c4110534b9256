#include "core/Text.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace Brenmoor {
namespace Tavo {

namespace {

std::string HexEscape(unsigned char byte) {
    static const char digits[] = "0123456789ABCDEF";
    return {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
}

} // namespace

std::string Escaped(const std::string& text) {
    std::string escaped;
    unsigned char before = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isC1 = before == 0xC2 && byte >= 0x80 && byte < 0xA0;
        if (character == '\n') {
            escaped += "\\n";
        } else if (character == '\r') {
            escaped += "\\r";
        } else if (character == '\t') {
            escaped += "\\t";
        } else if (byte < 0x20 || byte == 0x7F || isC1) {
            escaped += HexEscape(byte);
        } else {
            escaped += character;
        }
        before = byte;
    }
    return escaped;
}

std::string OneLine(const std::string& text) {
    static const char space[] = " \t\r\n";
    std::string line;
    std::size_t begin = text.find_first_not_of(space);
    while (begin != std::string::npos) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        const std::size_t last = text.find_last_not_of(space, end - 1);
        line += (line.empty() ? "" : " ") + text.substr(begin, last + 1 - begin);
        begin = text.find_first_not_of(space, end);
    }
    return Escaped(line);
}

std::string Wrapped(const std::string& text, std::size_t indent, std::size_t width) {
    const std::string margin(indent, ' ');
    std::string lines;
    std::string line;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (!line.empty() && indent + line.size() + 1 + word.size() > width) {
            lines += margin + line + "\n";
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    return lines + margin + line + "\n";
}

std::string Sentence(std::string text) {
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text + ".";
}

std::string Filled(std::string text,
                   const std::vector<std::pair<std::string, std::string>>& values) {
    for (const auto& [key, value] : values) {
        text.replace(text.find(key), key.size(), value);
    }
    return text;
}

std::string Joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : separator) + part;
    }
    return text;
}

} // namespace Tavo
} // namespace Brenmoor
