#include "support/Wire.h"
#include "wire/Json.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

std::string RefusalOf(const std::function<void(const Members&)>& use) {
    const Json::Value object = ParsedJson(
        R"({"text":"t","empty":"","flag":true,"null":null,"half":0.5,"count":7,"less":-1})");
    try {
        use(Members(object, {"text", "empty", "flag", "null", "half", "count", "less", "absent"}));
    } catch (const Refusal& refusal) {
        return std::to_string(refusal.status) + " " + refusal.what();
    }
    return "";
}

TEST(Members, GiveWhatIsThere) {
    EXPECT_EQ(RefusalOf([](const Members& members) {
                  EXPECT_TRUE(members.Has("null"));
                  EXPECT_TRUE(members.IsNull("null"));
                  EXPECT_FALSE(members.Has("absent"));
                  EXPECT_EQ(members.Text("empty"), "");
                  EXPECT_EQ(members.Filled("text"), "t");
                  EXPECT_TRUE(members.Flag("flag"));
                  EXPECT_TRUE(members.OptionalFlag("flag"));
                  EXPECT_FALSE(members.OptionalFlag("absent"));
                  EXPECT_EQ(members.Number("half", 0.5, 0.5), 0.5);
                  EXPECT_EQ(members.Count("count", 7, 7), 7U);
              }),
              "");
}

TEST(Members, RefuseWhatIsMissingOrOfAnotherType) {
    const std::pair<std::function<void(const Members&)>, std::string> cases[] = {
        {[](const Members& members) { members.Text("absent"); }, "'absent' must be a string"},
        {[](const Members& members) { members.Text("count"); }, "'count' must be a string"},
        {[](const Members& members) { members.Filled("empty"); }, "'empty' is empty"},
        {[](const Members& members) { members.Flag("text"); }, "'text' must be true or false"},
        {[](const Members& members) { members.Flag("absent"); }, "'absent' must be true or false"},
        {[](const Members& members) { members.OptionalFlag("null"); },
         "'null' must be true or false"},
        {[](const Members& members) { members.Number("text", 0, 1); },
         "'text' must be a number from 0.0 to 1.0"},
        {[](const Members& members) { members.Number("half", 1, 2); },
         "'half' must be a number from 1.0 to 2.0"},
        {[](const Members& members) { members.Number("flag", 0, 2); },
         "'flag' must be a number from 0.0 to 2.0"},
        {[](const Members& members) { members.Count("half", 0, 9); },
         "'half' must be a whole number from 0 to 9"},
        {[](const Members& members) { members.Count("less", 0, 9); },
         "'less' must be a whole number from 0 to 9"},
        {[](const Members& members) { members.Count("count", 8, 9); },
         "'count' must be a whole number from 8 to 9"},
    };
    for (const auto& [use, line] : cases) {
        EXPECT_EQ(RefusalOf(use), "400 Member " + line);
    }
    EXPECT_EQ(RefusalOf([](const Members&) {
                  const Json::Value other = ParsedJson(R"({"other":1})");
                  Members(other, {"text"});
              }),
              "400 Member 'other' is not known here");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
