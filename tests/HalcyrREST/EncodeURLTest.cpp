#include <TavoRemotingLib/HalcyrREST.h>

#include <cctype>
#include <cstdio>
#include <gtest/gtest.h>

namespace {

thread_local bool highBytesAreLetters = false;

} // namespace

/// Stands in for the C library's, so that a test can have a C locale with letters above 127 where
/// none is installed.
extern "C" int isalnum(int character) noexcept {
    const bool isLetter = isalpha(character) != 0 || isdigit(character) != 0;
    return isLetter || (highBytesAreLetters && character >= 0xC0) ? 1 : 0;
}

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

bool IsUnreserved(int byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z') || byte == '-' || byte == '_' || byte == '.' || byte == '~';
}

std::string Escape(int byte) {
    char text[4];
    snprintf(text, sizeof text, "%%%02X", static_cast<unsigned>(byte));
    return text;
}

TEST(EncodeURL, EmptyValueIsEmpty) {
    EXPECT_EQ(HalcyrREST::EncodeURL(""), "");
}

TEST(EncodeURL, LettersDigitsAndTheFourMarksPass) {
    const std::string unreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~";
    EXPECT_EQ(HalcyrREST::EncodeURL(unreserved), unreserved);
}

TEST(EncodeURL, TheFourMarksPassBesideAnEscape) {
    EXPECT_EQ(HalcyrREST::EncodeURL("-_.~ aZ09"), "-_.~%20aZ09");
}

TEST(EncodeURL, BlankAndAmpersandAreEscaped) {
    EXPECT_EQ(HalcyrREST::EncodeURL("a b&c"), "a%20b%26c");
}

TEST(EncodeURL, EqualsSignIsEscapedInCapitals) {
    EXPECT_EQ(HalcyrREST::EncodeURL("="), "%3D");
}

TEST(EncodeURL, ByteFFIsEscapedUnderTheCLocale) {
    EXPECT_EQ(HalcyrREST::EncodeURL("\xFF"), "%FF");
}

TEST(EncodeURL, SlashAndColonAreEscaped) {
    EXPECT_EQ(HalcyrREST::EncodeURL("http://h:80/"), "http%3A%2F%2Fh%3A80%2F");
}

TEST(EncodeURL, PlusAndPercentAreEscapedAndABlankIsNoPlus) {
    EXPECT_EQ(HalcyrREST::EncodeURL("+% "), "%2B%25%20");
}

TEST(EncodeURL, ZeroByteIsEscapedWithALeadingZero) {
    EXPECT_EQ(HalcyrREST::EncodeURL(std::string("a\0b\n", 4)), "a%00b%0A");
}

TEST(EncodeURL, EveryByteAloneUnderTheCLocale) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string value(1, static_cast<char>(byte));
        EXPECT_EQ(HalcyrREST::EncodeURL(value), IsUnreserved(byte) ? value : Escape(byte));
    }
}

TEST(EncodeURL, EveryByteInOneValueKeepsTheOrder) {
    std::string value;
    std::string escaped;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string character(1, static_cast<char>(byte));
        value += character;
        escaped += IsUnreserved(byte) ? character : Escape(byte);
    }
    EXPECT_EQ(HalcyrREST::EncodeURL(value), escaped);
}

TEST(EncodeURL, EscapesAreEscapedAgain) {
    EXPECT_EQ(HalcyrREST::EncodeURL(HalcyrREST::EncodeURL("/")), "%252F");
}

TEST(EncodeURL, LettersOfTheCLocalePass) {
    highBytesAreLetters = true;
    const std::string encoded = HalcyrREST::EncodeURL("\xBF\xC0\xFF /");
    highBytesAreLetters = false;
    EXPECT_EQ(encoded, "%BF\xC0\xFF%20%2F");
    EXPECT_EQ(HalcyrREST::EncodeURL("\xC0"), "%C0");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
