#include "EscapedText.h"
#include "Exchange.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr char digits[] = "0123456789ABCDEF";

bool IsPrintable(char character) {
    return character >= 0x20 && character <= 0x7E;
}

unsigned DigitAt(const std::string& text, std::size_t index) {
    const char digit = index < text.size() ? text[index] : '\0';
    if (digit >= '0' && digit <= '9') {
        return static_cast<unsigned>(digit - '0');
    }
    if (digit >= 'A' && digit <= 'F') {
        return static_cast<unsigned>(digit - 'A') + 10;
    }
    if (digit >= 'a' && digit <= 'f') {
        return static_cast<unsigned>(digit - 'a') + 10;
    }
    throw BadRequest("Two hexadecimal digits are missing at offset " + std::to_string(index));
}

} // namespace

std::string Hexadecimal(const std::string& bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

std::string Escape(const std::string& bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char character : bytes) {
        if (character == '\\') {
            text += "\\\\";
        } else if (IsPrintable(character)) {
            text += character;
        } else {
            text += "\\x" + Hexadecimal(std::string(1, character));
        }
    }
    return text;
}

std::string Unescape(const std::string& text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!IsPrintable(text[i])) {
            throw BadRequest("An unprintable byte stands unescaped at offset " + std::to_string(i));
        }
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        ++i;
        const char kind = i < text.size() ? text[i] : '\0';
        if (kind == '\\') {
            bytes += '\\';
        } else if (kind == 'x') {
            bytes += static_cast<char>(DigitAt(text, i + 1) * 16 + DigitAt(text, i + 2));
            i += 2;
        } else {
            throw BadRequest("An unknown escape stands at offset " + std::to_string(i - 1));
        }
    }
    return bytes;
}

} // namespace TavoSimulator
} // namespace Brenmoor
