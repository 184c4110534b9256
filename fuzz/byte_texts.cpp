// Any bytes can be read back from their split view and from their ASCII text.

#include "Fuzz.h"

#include <MirrinFramework/ByteArray.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

constexpr std::size_t rowSize = 15;
constexpr std::size_t offsetWidth = 8;
constexpr std::size_t columnWidth = 3;
constexpr std::size_t textAt = offsetWidth + 1 + rowSize * columnWidth + 2;

unsigned Digit(char character) {
    const std::size_t value = std::string("0123456789ABCDEF").find(character);
    Require(value != std::string::npos, "a digit is a capital hexadecimal one");
    return static_cast<unsigned>(value);
}

char Byte(const std::string& text, std::size_t at) {
    Require(at + 2 <= text.size(), "a byte has two digits");
    return static_cast<char>(Digit(text[at]) * 16 + Digit(text[at + 1]));
}

bool IsPrintable(char character) {
    return character >= 0x20 && character <= 0x7E;
}

std::string FromASCII(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        Require(IsPrintable(text[i]), "ASCII text is printable");
        if (text[i] != '\\') {
            bytes += text[i];
        } else if (text.at(++i) == '\\') {
            bytes += '\\';
        } else {
            Require(text[i] == 'x', "an escape is a backslash or an x");
            const char byte = Byte(text, i + 1);
            Require(!IsPrintable(byte), "only what is not printable is escaped by its number");
            bytes += byte;
            i += 2;
        }
    }
    return bytes;
}

/// The bytes of one row, which stands at that offset.
std::string FromRow(const std::string& row, std::size_t offset) {
    std::size_t number = 0;
    for (std::size_t i = 0; i < offsetWidth; ++i) {
        number = number * 16 + Digit(row.at(i));
    }
    Require(number == offset, "a row begins with its offset");
    Require(row.size() > textAt && row.size() <= textAt + rowSize, "a row has 1 to 15 bytes");
    std::string bytes;
    for (std::size_t column = 0; column < row.size() - textAt; ++column) {
        const char byte = Byte(row, offsetWidth + 2 + column * columnWidth);
        Require(row[textAt + column] == (IsPrintable(byte) ? byte : '.'),
                "the text beside the columns is theirs");
        bytes += byte;
    }
    return bytes;
}

std::string FromSplitView(const std::string& view) {
    std::string bytes;
    std::size_t begin = 0;
    while (begin < view.size()) {
        Require(bytes.size() % rowSize == 0, "only the last row is short");
        std::size_t end = view.find('\n', begin);
        end = end == std::string::npos ? view.size() : end;
        bytes += FromRow(view.substr(begin, end - begin), bytes.size());
        begin = end + 1;
    }
    return bytes;
}

} // namespace

void Try(const std::string& input) {
    const MirrinFramework::ByteArray bytes(input.data(), input.size());
    Require(FromASCII(bytes.ToASCIIString()) == input, "ASCII text turns back into its bytes");
    Require(FromSplitView(bytes.ToStringSplitView()) == input, "a view turns back into its bytes");
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
