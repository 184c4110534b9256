// Replies that make a poll fail, how, and what it has filled in by then.

#include "HalcyrREST/PollTest.h"

#include <json/value.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Held = std::vector<std::string>;

const char* const none = "None of the expected conditions were satisfied in response to Poll";

class PollFailure : public PollTest {
protected:
    /// Expects a poll for everything to throw exactly that.
    template <typename Exception>
    void ExpectFails(const std::string& body, const std::string& message) {
        SCOPED_TRACE(body.substr(0, 200));
        ExpectThrows<Exception>([&] { Poll(body); }, message);
    }

    void ExpectError(const std::string& value, const std::string& text) {
        ExpectFails<std::runtime_error>("{\"error\":" + value + ",\"timeout\":\"x\"," +
                                            R"("commands":[{"id":"1","command":"'t'"}],"gps":{}})",
                                        "Poll operation returned error from server: " + text);
        ExpectCleared();
    }
};

TEST_F(PollFailure, EmptyBody) {
    ExpectFails<HalcyrREST::EmptyCommandException>("", "The command returned was empty");
    ExpectCleared();
}

TEST_F(PollFailure, BodyOfBlanksIsAnEmptyObject) {
    ExpectFails<std::runtime_error>(" ", none);
    ExpectFails<std::runtime_error>("\r\n\t ", none);
}

TEST_F(PollFailure, EmptyObjectWithOnlyCommandsAskedFor) {
    ExpectThrows<std::runtime_error>([&] { PollFor(&commands, nullptr, nullptr, "{}"); }, none);
}

TEST_F(PollFailure, EmptyCommandsArrayOrShutdownFalseIsNoAnswer) {
    ExpectFails<std::runtime_error>(R"({"commands":[]})", none);
    ExpectFails<std::runtime_error>(R"({"shutdown":false})", none);
}

TEST_F(PollFailure, StatusLineIsCheckedBeforeTheBody) {
    const ScriptedServer server(StatusReply("404 Not Found"));
    HalcyrREST client(server.Address(), logger, false);
    ExpectThrows<std::runtime_error>(
        [&] { client.Poll(ids, &commands, &gps, &shutdown, 0, 1); },
        "For Poll, the HTTP header did not return OK: HTTP/1.1 404 Not Found");
}

TEST_F(PollFailure, BodyThatIsNotJsonKeepsTheParsersListAndLeavesTheResultsCleared) {
    ExpectFails<std::runtime_error>("nope",
                                    "* Line 1, Column 2\n  Missing '}' or object member name\n");
    ExpectCleared();
    ExpectFails<std::runtime_error>(
        "{\"shutdown\":nope}",
        "* Line 1, Column 13\n  Syntax error: value, object or array expected.\n");
    ExpectCleared();
}

TEST_F(PollFailure, TopLevelArrayIsWrappedAndRefused) {
    ExpectFails<std::runtime_error>("[{\"shutdown\":true}]",
                                    "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

TEST_F(PollFailure, DeepNestingPassesTheParsersOwnException) {
    ExpectFails<Json::RuntimeError>("\"commands\":" + std::string(1001, '[') +
                                        std::string(1001, ']'),
                                    "Exceeded stackLimit in readValue().");
    ExpectCleared();
}

TEST_F(PollFailure, ParsingErrorIsToldWithItsTypeOnALineOfItsOwn) {
    interposer.ThrowFromParse("inner");
    ExpectFails<HalcyrREST::JSONParsingError>(
        "{\"shutdown\":true}", std::string("Failed to parse poll result to JSON (") +
                                   typeid(HalcyrREST::JSONParsingError).name() + "\ninner)\n");
    ExpectCleared();
}

TEST_F(PollFailure, ErrorWinsOverEverythingElse) {
    ExpectError("\"no such payload\"", "no such payload");
}

TEST_F(PollFailure, ErrorTextIsTakenAsItIs) {
    ExpectError("\"\"", "");
    ExpectError("\" a\\nb\xC3\xBC \"", " a\nb\xC3\xBC ");
}

TEST_F(PollFailure, ErrorOfAnotherTypeIsToldAsStyledText) {
    ExpectError("5", "5\n");
    ExpectError("false", "false\n");
    ExpectError("true", "true\n");
    ExpectError("1.5", "1.5\n");
    ExpectError("{}", "{}\n");
    ExpectError("[]", "[]\n");
    ExpectError("{\"b\":1,\"a\":\"x\"}", "{\n\t\"a\" : \"x\",\n\t\"b\" : 1\n}\n");
    ExpectError("[1,null]", "[\n\t1,\n\tnull\n]\n");
}

TEST_F(PollFailure, TimeoutWinsOverCommandsPositionAndShutdown) {
    for (const char* const value : {"true", "1", "-1", "0.5"}) {
        ExpectFails<HalcyrREST::ServerTimeoutOnRequest>(
            std::string("{\"commands\":[5],\"gps\":{},\"shutdown\":true,\"timeout\":") + value +
                "}",
            "Server returned timeout on Poll operation");
        ExpectCleared();
    }
}

TEST_F(PollFailure, TimeoutThatCannotBeReadIsTheJsonLibrarysError) {
    for (const char* const value : {"\"true\"", "\"\"", "[]", "[true]"}) {
        ExpectFails<Json::LogicError>(std::string("{\"gps\":{},\"shutdown\":true,\"timeout\":") +
                                          value + "}",
                                      "Value is not convertible to bool.");
        ExpectCleared();
    }
}

TEST_F(PollFailure, TimeoutIsReadBeforeTheCommands) {
    ExpectFails<Json::LogicError>(R"({"commands":[5],"timeout":"x"})",
                                  "Value is not convertible to bool.");
}

TEST_F(PollFailure, NumberBehindACommandKeepsTheCommand) {
    ExpectFails<std::runtime_error>(
        R"({"commands":[{"id":"1","command":"'t'c"},5],"gps":{},"shutdown":true})",
        "Non-object found in command item list at index 1 in response to Poll");
    EXPECT_EQ(HeldCommands(), Held{"1|t|c"});
    EXPECT_FALSE(gps.received);
    EXPECT_FALSE(shutdown.requested);
}

TEST_F(PollFailure, ItemThatIsNoObjectIsTold) {
    for (const char* const item : {"null", "true", "5", "\"x\"", "[]", "[{}]"}) {
        ExpectFails<std::runtime_error>(
            std::string("{\"commands\":[") + item + "]}",
            "Non-object found in command item list at index 0 in response to Poll");
        ExpectCleared();
    }
}

TEST_F(PollFailure, MalformedCommandKeepsThoseBeforeIt) {
    ExpectFails<HalcyrREST::RemoteCommandFormatError>(
        R"({"commands":[{"id":"1","command":"'t'c"},{"id":"2","command":"\"\""},
                        {"id":"3","command":"x"},{"id":"4","command":"'t'"}],"gps":{}})",
        "Response tag not found at start of message");
    EXPECT_EQ(HeldCommands(), (Held{"1|t|c", "2||"}));
    EXPECT_FALSE(gps.received);
}

TEST_F(PollFailure, CommandWithoutItsMembersIsTold) {
    ExpectFails<HalcyrREST::RemoteCommandFormatError>(R"({"commands":[{}]})",
                                                      "Missing string element 'id'");
    ExpectFails<HalcyrREST::RemoteCommandFormatError>(R"({"commands":[{"id":"1"}]})",
                                                      "Missing string element 'cmd'");
    ExpectCleared();
}

TEST_F(PollFailure, ShutdownThatCannotBeReadComesLast) {
    for (const char* const value : {"\"true\"", "\"\"", "[]", "[true]"}) {
        ExpectFails<Json::LogicError>(
            std::string(R"({"commands":[{"id":"1","command":"'t'c"}],"gps":{},"shutdown":)") +
                value + "}",
            "Value is not convertible to bool.");
        EXPECT_EQ(HeldCommands(), Held{"1|t|c"});
        EXPECT_TRUE(gps.received);
        EXPECT_FALSE(shutdown.requested);
    }
}

TEST_F(PollFailure, ShutdownThatCannotBeReadGoesBeforeTheDecision) {
    ExpectFails<Json::LogicError>(R"({"shutdown":"x"})", "Value is not convertible to bool.");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
