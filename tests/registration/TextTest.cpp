#include "registration/Text.h"

#include "registration/StyledText.h"
#include "support/GlobalLocale.h"

#include <gtest/gtest.h>
#include <json/value.h>
#include <limits>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

TEST(Trimmed, TakesAllKindsOfWhiteSpaceFromBothEndsAndNoneFromWithin) {
    EXPECT_EQ(Trimmed(" \t\n\v\f\ra \n b\r\n"), "a \n b");
    EXPECT_EQ(Trimmed("a"), "a");
    EXPECT_EQ(Trimmed(std::string("\0 a \0", 5)), std::string_view("\0 a \0", 5));
}

TEST(Trimmed, OfNothingAndOfWhiteSpaceIsEmpty) {
    EXPECT_EQ(Trimmed(""), "");
    EXPECT_EQ(Trimmed("\r\n \t"), "");
}

TEST(HasBraces, NeedsBothOfThem) {
    EXPECT_TRUE(HasBraces("{}"));
    EXPECT_TRUE(HasBraces("{\"a\": 1}"));
    for (const char* const text : {"", "{", "}", "{}x", "x{}", "[]"}) {
        EXPECT_FALSE(HasBraces(text)) << text;
    }
}

Json::Value Everything() {
    Json::Value value;
    value["text"] = "a \"quoted\" \\ text, caf\xc3\xa9, \xff and \x01";
    value["numbers"].append(1);
    value["numbers"].append(-2.5);
    value["numbers"].append(0.1);
    value["numbers"].append(1e300);
    value["numbers"].append(Json::UInt64(std::numeric_limits<std::uint64_t>::max()));
    value["nothing"] = Json::Value();
    value["flag"] = true;
    value["empty"]["array"] = Json::Value(Json::arrayValue);
    value["empty"]["object"] = Json::Value(Json::objectValue);
    for (int i = 0; i < 40; ++i) {
        value["long"].append("an element that makes the line long");
    }
    return value;
}

TEST(StyledText, IsTheTextOfTheJsonLibraryTimeAfterTime) {
    StyledText styled;
    const Json::Value values[] = {Everything(), Json::Value(), Json::Value("x"),
                                  Json::Value(Json::objectValue), Everything()};
    for (const Json::Value& value : values) {
        EXPECT_EQ(styled.Of(value), value.toStyledString());
    }
}

TEST(StyledText, HasNoDigitGroupsOfTheGlobalLocale) {
    const GlobalLocale locale(new DigitGrouping);
    EXPECT_EQ(StyledText().Of(Json::Value(1234567)), "1234567\n");
}

TEST(Trimmed, TakesWhatIsWhiteSpaceInTheGlobalLocale) {
    const GlobalLocale locale(new OddLetters);
    EXPECT_EQ(Trimmed("! a !"), "a");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
