#include "support/GlobalLocale.h"
#include "support/Interposer.h"
#include "support/Throws.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <gtest/gtest.h>
#include <json/value.h>
#include <type_traits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Command = HalcyrREST::RemoteCommand;

/// A command object whose text is `text`, which must need no escapes.
std::string Json(const std::string& text) {
    return R"({"id":"7","command":")" + text + "\"}";
}

void ExpectCommand(const std::string& text, bool isFile, const std::string& tag,
                   const std::string& rest) {
    SCOPED_TRACE(text);
    const Command command(Json(text));
    EXPECT_EQ(command.id, "7");
    EXPECT_EQ(command.isFile, isFile);
    EXPECT_EQ(command.tag, tag);
    EXPECT_EQ(command.command, rest);
}

void ExpectFormatError(const std::string& json, const std::string& message) {
    SCOPED_TRACE(json);
    ExpectThrows<HalcyrREST::RemoteCommandFormatError>([&] { const Command command(json); },
                                                       message);
}

void ExpectNoTag(const std::string& text) {
    ExpectFormatError(Json(text), "Response tag not found at start of message");
}

TEST(RemoteCommand, DefaultIsEmpty) {
    const Command command;
    EXPECT_EQ(command.tag + command.command + command.id, "");
    EXPECT_FALSE(command.isFile);
}

TEST(RemoteCommand, TagAndTextAreTakenApart) {
    ExpectCommand("'t17'reboot now", false, "t17", "reboot now");
}

TEST(RemoteCommand, DoubleQuotesHoldATagToo) {
    ExpectCommand(R"(\"t17\"reboot)", false, "t17", "reboot");
    ExpectCommand(R"(\"\"x)", false, "", "x");
}

TEST(RemoteCommand, FilePrefixIsRemoved) {
    ExpectCommand("file:'up'/var/log/a.txt", true, "up", "/var/log/a.txt");
}

TEST(RemoteCommand, FilePrefixInMixedCaseCounts) {
    ExpectCommand("FiLe:'a'b", true, "a", "b");
    ExpectCommand("FILE:'a'b", true, "a", "b");
}

TEST(RemoteCommand, FilePrefixIsRemovedOnceOnly) {
    ExpectNoTag("file:file:'a'b");
    ExpectCommand("'a'file:b", false, "a", "file:b");
}

TEST(RemoteCommand, FilePrefixNeedsItsColonAndTheVeryStart) {
    ExpectNoTag("file'a'b");
    ExpectNoTag(" file:'a'b");
}

TEST(RemoteCommand, FilePrefixIsComparedInTheGlobalLocale) {
    ExpectNoTag("#ile:'a'b");
    const GlobalLocale locale(new OddLetters);
    ExpectCommand("#ile:'a'b", true, "a", "b");
}

TEST(RemoteCommand, FilePrefixAloneHasNoTag) {
    ExpectNoTag("file:");
    ExpectNoTag("file:'");
    ExpectNoTag(R"(file:\")");
}

TEST(RemoteCommand, TwoApostrophesAreAnEmptyTagAndText) {
    ExpectCommand("''", false, "", "");
    ExpectCommand("file:''", true, "", "");
}

TEST(RemoteCommand, MissingClosingQuoteFails) {
    ExpectNoTag("'abc");
    ExpectNoTag(R"(\"abc)");
}

TEST(RemoteCommand, MismatchedQuotesFail) {
    ExpectNoTag(R"(\"abc')");
    ExpectNoTag(R"('abc\")");
}

TEST(RemoteCommand, TextWithoutAnOpeningQuoteFails) {
    ExpectNoTag("reboot");
    ExpectNoTag("x'a'b");
    ExpectNoTag(" 'a'b");
    ExpectNoTag("`a`b");
}

TEST(RemoteCommand, TextShorterThanTwoCharactersFails) {
    ExpectNoTag("");
    ExpectNoTag("'");
    ExpectNoTag("x");
}

TEST(RemoteCommand, OtherKindOfQuoteMayStandInTheTag) {
    ExpectCommand(R"('a\"b'c)", false, "a\"b", "c");
    ExpectCommand(R"(\"a'b\"c)", false, "a'b", "c");
}

TEST(RemoteCommand, NextQuoteClosesTheTag) {
    ExpectCommand("'a'b'c'", false, "a", "b'c'");
    ExpectCommand("'''x", false, "", "'x");
}

TEST(RemoteCommand, NothingIsTrimmed) {
    ExpectCommand("' t '  reboot \\n", false, " t ", "  reboot \n");
}

TEST(RemoteCommand, ZeroBytesAndUtf8AreKept) {
    const Command command("{\"id\":\"\\u0000\",\"command\":\"'a\\u0000b'\xE2\x82\xAC\\u0000\"}");
    EXPECT_EQ(command.id, std::string(1, '\0'));
    EXPECT_EQ(command.tag, std::string("a\0b", 3));
    EXPECT_EQ(command.command, std::string("\xE2\x82\xAC\0", 4));
}

TEST(RemoteCommand, IdentifierMayBeEmpty) {
    EXPECT_EQ(Command(R"({"id":"","command":"'t'"})").id, "");
}

TEST(RemoteCommand, BareMemberListIsAccepted) {
    EXPECT_EQ(Command(" \"id\":\"9\",\"command\":\"'t'c\" ").id, "9");
}

TEST(RemoteCommand, IdentifierThatIsNoStringFails) {
    for (const char* const id : {"17", "null", "true", "{}", "[\"7\"]", "1.5"}) {
        ExpectFormatError(std::string(R"({"command":"'t'","id":)") + id + "}",
                          "Missing string element 'id'");
    }
}

TEST(RemoteCommand, MissingIdentifierFailsFirst) {
    ExpectFormatError("{}", "Missing string element 'id'");
    ExpectFormatError(R"({"command":"x"})", "Missing string element 'id'");
    ExpectFormatError("{\"id\":1,\"command\":2}", "Missing string element 'id'");
}

TEST(RemoteCommand, EmptyOrBlankTextFailsOnTheIdentifier) {
    ExpectFormatError("", "Missing string element 'id'");
    ExpectFormatError(" \n", "Missing string element 'id'");
}

TEST(RemoteCommand, CommandThatIsNoStringFails) {
    ExpectFormatError(R"({"id":"7"})", "Missing string element 'cmd'");
    ExpectFormatError(R"({"id":"7","cmd":"'t'"})", "Missing string element 'cmd'");
    for (const char* const command : {"17", "null", "true", "{}", "[\"'t'\"]"}) {
        ExpectFormatError(std::string(R"({"id":"7","command":)") + command + "}",
                          "Missing string element 'cmd'");
    }
}

TEST(RemoteCommand, TextThatIsNotJsonKeepsTheParsersList) {
    ExpectThrows<std::runtime_error>([] { const Command command("nope"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

TEST(RemoteCommand, DeepNestingPassesTheParsersOwnException) {
    const std::string json = "\"id\":" + std::string(1001, '[') + std::string(1001, ']');
    ExpectThrows<Json::RuntimeError>([&] { const Command command(json); },
                                     "Exceeded stackLimit in readValue().");
}

TEST(RemoteCommand, ParsingErrorIsToldWithItsType) {
    Interposer interposer;
    interposer.ThrowFromParse("inner");
    ExpectThrows<HalcyrREST::JSONParsingError>([] { const Command command("{}"); },
                                               std::string("Failed to parse command to JSON (") +
                                                   typeid(HalcyrREST::JSONParsingError).name() +
                                                   ": inner)\n");
}

TEST(RemoteCommand, CopiesMovesAndVectorsKeepEveryField) {
    static_assert(std::is_copy_constructible_v<Command> && std::is_copy_assignable_v<Command>);
    const Command first(R"({"id":"1","command":"file:'tag of the first'its text"})");
    std::vector<Command> commands(19, first);
    commands.push_back(first);
    commands.erase(commands.begin(), commands.begin() + 10);
    commands[3] = Command(R"({"id":"2","command":"'b'c"})");
    Command last;
    last = commands[3];
    commands[3].tag = "changed";
    const Command moved = std::move(commands[9]);
    EXPECT_EQ(last.id + last.tag + last.command, "2bc");
    EXPECT_FALSE(last.isFile);
    for (const Command& command : {moved, commands[0], commands[8], first}) {
        EXPECT_EQ(command.id, "1");
        EXPECT_EQ(command.tag, "tag of the first");
        EXPECT_EQ(command.command, "its text");
        EXPECT_TRUE(command.isFile);
    }
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
