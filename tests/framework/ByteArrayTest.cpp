#include <MirrinFramework/ByteArray.h>

#include "Bytes.h"

#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>

namespace Brenmoor {
namespace MirrinFramework {

namespace {

std::string Text(const ByteArray& bytes) {
    return std::string(static_cast<const char*>(bytes.Data()), bytes.Size());
}

TEST(ByteArray, IsEmptyWhenMade) {
    EXPECT_EQ(ByteArray().Size(), 0U);
    EXPECT_EQ(ByteArray(nullptr, 0).Size(), 0U);
}

TEST(ByteArray, OwnsACopyOfItsBytes) {
    char source[] = {'a', '\0', 'c'};
    const ByteArray bytes(source, sizeof source);
    std::memset(source, 'x', sizeof source);
    EXPECT_EQ(Text(bytes), std::string("a\0c", 3));
}

TEST(ByteArray, LiteralStringIsTakenAsItIs) {
    ByteArray bytes = Bytes("before");
    bytes.InitFromLiteralString(std::string("\\x41\0%", 6));
    EXPECT_EQ(Text(bytes), std::string("\\x41\0%", 6));
}

TEST(ByteArray, SubArrayEndsWithTheArray) {
    EXPECT_EQ(Text(Bytes("abcdef").SubArray(2, 3)), "cde");
    EXPECT_EQ(Text(Bytes("abcdef").SubArray(4, 100)), "ef");
    EXPECT_EQ(Bytes("abcdef").SubArray(6, 1).Size(), 0U);
    EXPECT_THROW(Bytes("abcdef").SubArray(7, 0), std::out_of_range);
}

TEST(ByteArraySplitView, NoBytesGiveNoText) {
    EXPECT_EQ(ByteArray().ToStringSplitView(), "");
}

TEST(ByteArraySplitView, ShortRowIsPaddedToTheTextColumn) {
    EXPECT_EQ(Bytes("a").ToStringSplitView(),
              "00000000  61                                            a");
}

TEST(ByteArraySplitView, RowsHaveFifteenBytes) {
    EXPECT_EQ(Bytes("0123456789abcde").ToStringSplitView(),
              "00000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65  0123456789abcde");
    EXPECT_EQ(Bytes("0123456789abcdef").ToStringSplitView(),
              "00000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65  0123456789abcde\n"
              "0000000F  66                                            f");
}

TEST(ByteArraySplitView, UnprintableBytesAreFullStopsInTheText) {
    EXPECT_EQ(Bytes(std::string("\x1F\x20\x7E\x7F\x00\xFF\n", 7)).ToStringSplitView(),
              "00000000  1F 20 7E 7F 00 FF 0A                          . ~....");
}

TEST(ByteArrayASCIIString, PrintableBytesPass) {
    EXPECT_EQ(Bytes(" Az09~").ToASCIIString(), " Az09~");
    EXPECT_EQ(ByteArray().ToASCIIString(), "");
}

TEST(ByteArrayASCIIString, BackslashIsDoubled) {
    EXPECT_EQ(Bytes("\\x41").ToASCIIString(), "\\\\x41");
}

TEST(ByteArrayASCIIString, OtherBytesAreEscapedWithCapitalDigits) {
    EXPECT_EQ(Bytes(std::string("\x00\x1F\x7F\x80\xFF\n", 6)).ToASCIIString(),
              "\\x00\\x1F\\x7F\\x80\\xFF\\x0A");
}

} // namespace

} // namespace MirrinFramework
} // namespace Brenmoor
