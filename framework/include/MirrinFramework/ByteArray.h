#pragma once

#include <MirrinFramework/Export.h>

#include <cstddef>
#include <string>

namespace Brenmoor {
namespace MirrinFramework {

/// A sequence of bytes that owns its memory, with two renderings for people and for text channels.
/// A plain value; distinct objects may be used by distinct threads.
class MIRRIN_EXPORT ByteArray {
public:
    ByteArray();
    /// Copies `size` bytes from `data`. `data` may be null when `size` is 0.
    ByteArray(const void* data, std::size_t size);

    /// The number of bytes.
    std::size_t Size() const;
    /// The first byte; valid until the array is changed or destroyed. Do not read it when Size() is
    /// 0.
    const void* Data() const;

    /// A copy of at most `count` bytes from `offset` on; fewer if the array ends before.
    /// Throws std::out_of_range when `offset` is greater than Size().
    ByteArray SubArray(std::size_t offset, std::size_t count) const;

    /// Replaces the contents by the bytes of `text` as they are: no escapes, zero bytes included.
    void InitFromLiteralString(const std::string& text);

    /// A dump in rows of 15 bytes, separated by line feeds: the row's offset as 8 or more
    /// hexadecimal digits, a column for each byte, and its printable ASCII text with a full stop
    /// for every other byte. Empty for no bytes.
    std::string ToStringSplitView() const;

    /// Printable ASCII (0x20 to 0x7E) as it is, except the backslash, which is doubled; every other
    /// byte as a backslash, a small x and two capital hexadecimal digits. Can be turned back.
    std::string ToASCIIString() const;

private:
    std::string bytes;
};

} // namespace MirrinFramework
} // namespace Brenmoor
