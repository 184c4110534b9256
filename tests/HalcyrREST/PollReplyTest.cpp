// Replies that a poll takes, and what it makes of them.

#include "HalcyrREST/PollTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Held = std::vector<std::string>;

class PollReply : public PollTest {};

TEST_F(PollReply, CommandsAreHeldInTheirOrder) {
    Poll(R"({"commands":[{"id":"b","command":"'t2'two"},{"id":"a","command":"FILE:\"t1\"/x"}]})");
    EXPECT_EQ(HeldCommands(), (Held{"b|t2|two", "a|t1|/x"}));
    EXPECT_FALSE(commands[0].isFile);
    EXPECT_TRUE(commands[1].isFile);
}

TEST_F(PollReply, ThousandCommandsAreHeldInTheirOrder) {
    Held expected;
    std::string items;
    for (int i = 0; i < 1000; ++i) {
        const std::string number = std::to_string(i);
        items += (i > 0 ? "," : "") + std::string("{\"id\":\"") + number + "\",\"command\":\"'t" +
                 number + "'c" + number + "\"}";
        expected.push_back(number + "|t" + number + "|c" + number);
    }
    Poll("{\"commands\":[" + items + "]}");
    EXPECT_EQ(HeldCommands(), expected);
}

TEST_F(PollReply, MoreCommandsThanAskedForAreAllHeld) {
    const ScriptedServer server(
        OkReply(R"({"commands":[{"id":"1","command":"''"},{"id":"2","command":"''"}]})"));
    HalcyrREST(server.Address(), logger, false).Poll(ids, &commands, nullptr, nullptr, 0, 1);
    EXPECT_EQ(HeldCommands(), (Held{"1||", "2||"}));
}

TEST_F(PollReply, CommandTextsSurviveTheirSecondReading) {
    Poll("{\"commands\":[{\"id\":\"\\u0000\\\"\\\\\\/\",\"command\":\"'\xC3\xBC\xE2\x82\xAC"
         "\xF0\x9F\x98\x80'\\b\\f\\n\\r\\t\\u0000\\u00e9\\ud83d\\ude00\\u007f<'\\\"\"}]}");
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_EQ(commands[0].id, std::string("\0\"\\/", 4));
    EXPECT_EQ(commands[0].tag, "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(commands[0].command, std::string("\b\f\n\r\t\0\xC3\xA9\xF0\x9F\x98\x80\x7F<'\"", 16));
}

TEST_F(PollReply, FurtherMembersOfACommandAreIgnored) {
    Poll(R"({"commands":[{"id":"1","command":"'t'c","x":{"y":[1,null]},"isFile":true}]})");
    EXPECT_EQ(HeldCommands(), Held{"1|t|c"});
    EXPECT_FALSE(commands[0].isFile);
}

TEST_F(PollReply, PositionIsFilledInToTheLastDigit) {
    Poll(R"({"gps":{"latitude":-59.123456789012345,"longitude":0.1,"timeFix":1700000000.123}})");
    EXPECT_TRUE(gps.received);
    EXPECT_FALSE(gps.hasError);
    EXPECT_EQ(gps.errorText, "");
    EXPECT_EQ(gps.latitude, -59.123456789012345);
    EXPECT_EQ(gps.longitude, 0.1);
    EXPECT_EQ(gps.timeFix, 1700000000.123);
}

TEST_F(PollReply, PositionWithoutCoordinatesCountsAsReceived) {
    PollFor(nullptr, &gps, nullptr, R"({"gps":{}})");
    EXPECT_TRUE(gps.received);
    EXPECT_TRUE(gps.hasError);
    EXPECT_EQ(gps.errorText, "One or more fields are not valid");
}

TEST_F(PollReply, PositionsOwnErrorIsNotThePolls) {
    Poll(R"({"gps":{"error":"no fix"}})");
    EXPECT_TRUE(gps.received);
    EXPECT_EQ(gps.errorText, "no fix");
}

TEST_F(PollReply, ShutdownTrueIsRequested) {
    PollFor(nullptr, nullptr, &shutdown, R"({"shutdown":true})");
    EXPECT_TRUE(shutdown.requested);
}

TEST_F(PollReply, ShutdownThatReadsAsTrueIsRequested) {
    for (const char* const value : {"1", "-1", "0.5", "1e9"}) {
        PollFor(nullptr, nullptr, &shutdown, std::string("{\"shutdown\":") + value + "}");
        EXPECT_TRUE(shutdown.requested) << value;
    }
}

TEST_F(PollReply, ShutdownThatDoesNotReadAsTrueIsNotRequested) {
    for (const char* const value : {"false", "0", "0.0", "null", "{}", "{\"a\":true}"}) {
        shutdown.requested = true;
        Poll(std::string("{\"gps\":{},\"shutdown\":") + value + "}");
        EXPECT_FALSE(shutdown.requested) << value;
    }
}

TEST_F(PollReply, TimeoutThatIsNotTrueIsPassedOver) {
    for (const char* const value : {"false", "0", "0.0", "null", "{}", "{\"a\":true}"}) {
        shutdown.requested = false;
        Poll(std::string("{\"shutdown\":true,\"timeout\":") + value + "}");
        EXPECT_TRUE(shutdown.requested) << value;
    }
}

TEST_F(PollReply, ErrorNullIsPassedOver) {
    Poll(R"({"error":null,"shutdown":true})");
    EXPECT_TRUE(shutdown.requested);
}

TEST_F(PollReply, CommandsOfAnotherTypeArePassedOver) {
    for (const char* const value :
         {"null", "true", "1", "\"x\"", R"({"id":"1","command":"'t'c"})", "[]"}) {
        Poll(std::string("{\"shutdown\":true,\"commands\":") + value + "}");
        EXPECT_EQ(HeldCommands(), Held()) << value;
    }
}

TEST_F(PollReply, PositionOfAnotherTypeIsPassedOver) {
    for (const char* const value : {"null", "true", "1", "\"x\"", "[]", "[{}]"}) {
        Poll(std::string("{\"shutdown\":true,\"gps\":") + value + "}");
        EXPECT_FALSE(gps.received) << value;
        ExpectOldPosition();
    }
}

TEST_F(PollReply, CommandsNotAskedForAreNotEvenRead) {
    PollFor(nullptr, nullptr, &shutdown, R"({"commands":[5,{"id":1}],"shutdown":true})");
    EXPECT_TRUE(shutdown.requested);
    EXPECT_EQ(HeldCommands(), Held{"old|old|old"});
}

TEST_F(PollReply, PositionNotAskedForIsNotRead) {
    PollFor(nullptr, nullptr, &shutdown, R"({"gps":{"latitude":9},"shutdown":true})");
    ExpectOldPosition();
}

TEST_F(PollReply, ShutdownNotAskedForIsNotEvenRead) {
    shutdown.requested = false;
    PollFor(nullptr, &gps, nullptr, R"({"gps":{},"shutdown":"x"})");
    PollFor(nullptr, &gps, nullptr, R"({"gps":{},"shutdown":true})");
    EXPECT_FALSE(shutdown.requested);
}

TEST_F(PollReply, EverythingAtOnce) {
    Poll(R"({"shutdown":true,"gps":{"latitude":1,"longitude":2,"timeFix":3},"other":[],
             "commands":[{"command":"'t'c","id":"1"}],"timeout":false,"error":null})");
    EXPECT_EQ(HeldCommands(), Held{"1|t|c"});
    EXPECT_EQ(gps.timeFix, 3.0);
    EXPECT_TRUE(shutdown.requested);
}

TEST_F(PollReply, BareMemberListIsAccepted) {
    Poll(" \"gps\":{},\n\"shutdown\":true\r\n");
    EXPECT_TRUE(gps.received);
    EXPECT_TRUE(shutdown.requested);
}

TEST_F(PollReply, BlanksAroundTheObjectAreAccepted) {
    Poll("\r\n {\"shutdown\":true} \r\n");
    EXPECT_TRUE(shutdown.requested);
}

TEST_F(PollReply, AnyOneAnswerThatWasAskedForSatisfies) {
    const std::string item = R"("commands":[{"id":"1","command":"'t'"}])";
    const std::string fix = R"("gps":{})";
    const std::string request = R"("shutdown":true)";
    const std::string no = R"("commands":[],"gps":null,"shutdown":false)";
    const std::string none = "None of the expected conditions were satisfied in response to Poll";
    for (unsigned asked = 1; asked < 8; ++asked) {
        for (unsigned answered = 0; answered < 8; ++answered) {
            SCOPED_TRACE(std::to_string(asked) + "/" + std::to_string(answered));
            // Of two members with one key, the later one counts.
            const std::string body = no + ((answered & 1U) != 0 ? "," + item : "") +
                                     ((answered & 2U) != 0 ? "," + fix : "") +
                                     ((answered & 4U) != 0 ? "," + request : "");
            const auto poll = [&] {
                PollFor((asked & 1U) != 0 ? &commands : nullptr, (asked & 2U) != 0 ? &gps : nullptr,
                        (asked & 4U) != 0 ? &shutdown : nullptr, body);
            };
            if ((asked & answered) != 0) {
                EXPECT_NO_THROW(poll());
            } else {
                ExpectThrows<std::runtime_error>(poll, none);
            }
        }
    }
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
