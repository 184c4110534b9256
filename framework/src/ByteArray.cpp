#include <MirrinFramework/ByteArray.h>
#include <MirrinFramework/Ultos.h>

namespace Brenmoor {
namespace MirrinFramework {

namespace {

constexpr std::size_t rowSize = 15;

bool IsPrintable(unsigned char byte) {
    return byte >= 0x20 && byte <= 0x7E;
}

std::string Row(const std::string& bytes, std::size_t offset) {
    std::string columns = ultos(offset, 16, 8, 0) + " ";
    std::string text;
    for (std::size_t column = 0; column < rowSize; ++column) {
        const std::size_t index = offset + column;
        if (index >= bytes.size()) {
            columns += "   ";
            continue;
        }
        const auto byte = static_cast<unsigned char>(bytes[index]);
        columns += " " + ultos(byte, 16, 2, 0);
        text += IsPrintable(byte) ? bytes[index] : '.';
    }
    return columns + "  " + text;
}

} // namespace

ByteArray::ByteArray() = default;

ByteArray::ByteArray(const void* data, std::size_t size) {
    if (size > 0) {
        bytes.assign(static_cast<const char*>(data), size);
    }
}

std::size_t ByteArray::Size() const {
    return bytes.size();
}

const void* ByteArray::Data() const {
    return bytes.data();
}

ByteArray ByteArray::SubArray(std::size_t offset, std::size_t count) const {
    ByteArray part;
    part.bytes = bytes.substr(offset, count);
    return part;
}

void ByteArray::InitFromLiteralString(const std::string& text) {
    bytes = text;
}

std::string ByteArray::ToStringSplitView() const {
    std::string view;
    for (std::size_t offset = 0; offset < bytes.size(); offset += rowSize) {
        if (offset > 0) {
            view += '\n';
        }
        view += Row(bytes, offset);
    }
    return view;
}

std::string ByteArray::ToASCIIString() const {
    std::string text;
    text.reserve(bytes.size());
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\\') {
            text += "\\\\";
        } else if (IsPrintable(byte)) {
            text += character;
        } else {
            text += "\\x" + ultos(byte, 16, 2, 0);
        }
    }
    return text;
}

} // namespace MirrinFramework
} // namespace Brenmoor
