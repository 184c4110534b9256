// When exactly the results of an earlier poll go.

#include "HalcyrREST/PollTest.h"
#include "support/ClosedPort.h"

#include <climits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class PollClearing : public PollTest {
protected:
    void ExpectUntouched() const {
        EXPECT_EQ(HeldCommands(), std::vector<std::string>{"old|old|old"});
        EXPECT_TRUE(gps.received);
        ExpectOldPosition();
        EXPECT_TRUE(shutdown.requested);
    }

    /// Expects that such a poll is refused before anything is sent or changed.
    void ExpectRefused(Commands* wanted, long timeoutMs, long maxCommands) {
        HalcyrREST client("127.0.0.1:1", logger, false);
        ExpectThrows<std::invalid_argument>(
            [&] { client.Poll(ids, wanted, nullptr, nullptr, timeoutMs, maxCommands); },
            "Poll command will not do anything");
        EXPECT_EQ(interposer.Calls(), std::vector<std::string>());
        EXPECT_EQ(logger.Text(), "");
        ExpectUntouched();
    }

    /// Expects that a poll for everything fails with the results cleared.
    void ExpectClearedOnFailure(const std::string& address) {
        HalcyrREST client(address, logger, false);
        EXPECT_THROW(client.Poll(ids, &commands, &gps, &shutdown, 0, 1), std::exception);
        ExpectCleared();
        ExpectOldPosition();
    }
};

TEST_F(PollClearing, NothingAskedForIsRefusedWhateverTheOtherArguments) {
    for (const long maxCommands : {LONG_MIN, -5L, 0L, 1L, 2L, LONG_MAX}) {
        for (const long timeoutMs : {LONG_MIN, -1L, 0L, 1000L}) {
            ExpectRefused(nullptr, timeoutMs, maxCommands);
        }
    }
    ids.clear();
    ExpectRefused(nullptr, 0, 1);
}

TEST_F(PollClearing, NoCommandsAskedForIsRefusedBeforeTheVectorIsEmptied) {
    for (const long maxCommands : {0L, -1L, -5L, LONG_MIN}) {
        ExpectRefused(&commands, 0, maxCommands);
    }
}

TEST_F(PollClearing, IsDoneBeforeTheTransferBegins) {
    interposer.Fail("curl_easy_init");
    ExpectClearedOnFailure("127.0.0.1:1");
}

TEST_F(PollClearing, IsDoneWhenTheConnectionIsRefused) {
    const ClosedPort port;
    ExpectClearedOnFailure(port.Address());
}

TEST_F(PollClearing, IsDoneWhenTheStatusIsNotOK) {
    const ScriptedServer server("HTTP/1.1 404 Not Found\r\nContent-Length: 17\r\n\r\n"
                                "{\"shutdown\":true}");
    ExpectClearedOnFailure(server.Address());
}

TEST_F(PollClearing, IsAllThatHappensWhenTheReplyIsNoUse) {
    for (const char* const body :
         {"", " ", "nope", "{}", R"({"error":"e","commands":[{"id":"1","command":"'t'"}]})",
          R"({"timeout":true,"gps":{},"shutdown":true})", R"({"timeout":"x","shutdown":true})",
          R"({"commands":[],"gps":null,"shutdown":false})"}) {
        SCOPED_TRACE(body);
        const ScriptedServer server(OkReply(body));
        ExpectClearedOnFailure(server.Address());
    }
}

TEST_F(PollClearing, SparesWhatIsNotAskedFor) {
    HalcyrREST::GPSInfo otherGps;
    HalcyrREST::ShutdownInfo otherShutdown;
    Commands otherCommands;
    const char* const empty = "{}";
    EXPECT_THROW(PollFor(&otherCommands, nullptr, nullptr, empty), std::runtime_error);
    EXPECT_THROW(PollFor(nullptr, &otherGps, nullptr, empty), std::runtime_error);
    EXPECT_THROW(PollFor(nullptr, nullptr, &otherShutdown, empty), std::runtime_error);
    ExpectUntouched();
}

TEST_F(PollClearing, TakesEachResultThatIsAskedFor) {
    const char* const empty = "{}";
    EXPECT_THROW(PollFor(&commands, nullptr, nullptr, empty), std::runtime_error);
    EXPECT_EQ(HeldCommands(), std::vector<std::string>());
    EXPECT_TRUE(gps.received && shutdown.requested);
    EXPECT_THROW(PollFor(nullptr, &gps, nullptr, empty), std::runtime_error);
    EXPECT_FALSE(gps.received);
    EXPECT_TRUE(shutdown.requested);
    EXPECT_THROW(PollFor(nullptr, nullptr, &shutdown, empty), std::runtime_error);
    EXPECT_FALSE(shutdown.requested);
}

TEST_F(PollClearing, EmptiesTheVectorAlsoWhenNoCommandIsWanted) {
    const ScriptedServer server(OkReply(R"({"shutdown":true})"));
    HalcyrREST(server.Address(), logger, false).Poll(ids, &commands, nullptr, &shutdown, 0, 0);
    EXPECT_EQ(HeldCommands(), std::vector<std::string>());
}

TEST_F(PollClearing, OldPositionStaysUntilItIsReplaced) {
    Poll(R"({"shutdown":true})");
    EXPECT_FALSE(gps.received);
    ExpectOldPosition();
    Poll(R"({"gps":{"latitude":7,"longitude":8,"timeFix":9}})");
    EXPECT_TRUE(gps.received);
    EXPECT_FALSE(gps.hasError);
    EXPECT_EQ(gps.errorText, "");
    EXPECT_EQ(gps.latitude, 7.0);
    EXPECT_EQ(gps.longitude, 8.0);
    EXPECT_EQ(gps.timeFix, 9.0);
    EXPECT_FALSE(shutdown.requested);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
