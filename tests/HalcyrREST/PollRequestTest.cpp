#include "HalcyrREST/PollTest.h"

#include <climits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

const char* const everything =
    R"({"commands":[{"id":"1","command":"'t'"}],"gps":{},"shutdown":true})";

class PollRequest : public PollTest {
protected:
    struct Case {
        bool commands;
        bool gps;
        bool shutdown;
        long maxCommands;
        std::string parameters; ///< between "/xp?op=poll" and "&timeout="
    };

    void ExpectRequest(const Case& test, long timeoutMs, const std::string& timeout) {
        const ScriptedServer server(OkReply(everything));
        HalcyrREST(server.Address(), logger, false)
            .Poll(ids, test.commands ? &commands : nullptr, test.gps ? &gps : nullptr,
                  test.shutdown ? &shutdown : nullptr, timeoutMs, test.maxCommands);
        ExpectGet(server, "/xp?op=poll" + test.parameters + "&timeout=" + timeout);
    }

    void ExpectIds(const std::vector<std::string>& polled, const std::string& parameters) {
        ids = polled;
        ExpectRequest({true, false, false, 1, parameters + "&format=2"}, 0, "0");
        EXPECT_EQ(ids, polled);
    }

    /// Polls with that poll time and expects these values of libcurl's options 13 and 112.
    void ExpectLimit(long timeoutMs, const std::string& timeout, long wholeSeconds,
                     long responseSeconds) {
        ids.clear();
        const std::size_t before = interposer.Calls().size();
        ExpectRequest({false, true, false, 1, "&format=2&gps=true&maxcommands=0"}, timeoutMs,
                      timeout);
        std::vector<std::string> limits;
        const std::vector<std::string> calls = interposer.Calls();
        for (std::size_t i = before; i < calls.size(); ++i) {
            if (calls[i].find("curl_easy_setopt 13 ") == 0 ||
                calls[i].find("curl_easy_setopt 112 ") == 0) {
                limits.push_back(calls[i]);
            }
        }
        EXPECT_EQ(limits, (std::vector<std::string>{
                              "curl_easy_setopt 13 " + std::to_string(wholeSeconds),
                              "curl_easy_setopt 112 " + std::to_string(responseSeconds)}));
    }

    /// Expects that libcurl refuses the limit for that poll time, which then is the last call.
    void ExpectLimitRefused(long timeoutMs, long wholeSeconds) {
        HalcyrREST client("127.0.0.1:1", logger, false);
        ExpectEasyError([&] { client.Poll(ids, nullptr, &gps, nullptr, timeoutMs, 1); },
                        "curl_easy_setopt", CURLE_BAD_FUNCTION_ARGUMENT);
        const std::vector<std::string> limits = interposer.CallsTo("curl_easy_setopt 13 ");
        ASSERT_FALSE(limits.empty());
        EXPECT_EQ(limits.back(), "curl_easy_setopt 13 " + std::to_string(wholeSeconds));
        EXPECT_EQ(interposer.CallsTo("curl_easy_perform"), std::vector<std::string>());
        EXPECT_NE(logger.Text().find("&timeout=" + std::to_string(timeoutMs) + "\n"),
                  std::string::npos);
        EXPECT_FALSE(gps.received);
    }
};

TEST_F(PollRequest, EveryCombinationOfWhatIsAskedForAndMaxCommands) {
    const std::vector<Case> cases = {
        {true, false, false, 1, "&format=2"},
        {true, false, false, 2, "&format=2&maxcommands=2"},
        {false, true, false, 0, "&format=2&gps=true&maxcommands=0"},
        {false, true, false, 1, "&format=2&gps=true&maxcommands=0"},
        {false, true, false, 2, "&format=2&gps=true&maxcommands=0"},
        {false, true, false, -5, "&format=2&gps=true&maxcommands=0"},
        {false, false, true, 0, "&format=2&shutdown=true&maxcommands=0"},
        {false, false, true, 1, "&format=2&shutdown=true&maxcommands=0"},
        {false, false, true, 2, "&format=2&shutdown=true&maxcommands=0"},
        {false, false, true, -5, "&format=2&shutdown=true&maxcommands=0"},
        {false, true, true, 0, "&format=2&gps=true&shutdown=true&maxcommands=0"},
        {false, true, true, 1, "&format=2&gps=true&shutdown=true&maxcommands=0"},
        {false, true, true, 2, "&format=2&gps=true&shutdown=true&maxcommands=0"},
        {false, true, true, -5, "&format=2&gps=true&shutdown=true&maxcommands=0"},
        {true, true, false, 0, "&format=2&gps=true&maxcommands=0"},
        {true, true, false, 1, "&format=2&gps=true"},
        {true, true, false, 2, "&format=2&gps=true&maxcommands=2"},
        {true, true, false, -5, "&format=2&gps=true&maxcommands=-5"},
        {true, false, true, 0, "&format=2&shutdown=true&maxcommands=0"},
        {true, false, true, 1, "&format=2&shutdown=true"},
        {true, false, true, 2, "&format=2&shutdown=true&maxcommands=2"},
        {true, false, true, -5, "&format=2&shutdown=true&maxcommands=-5"},
        {true, true, true, 0, "&format=2&gps=true&shutdown=true&maxcommands=0"},
        {true, true, true, 1, "&format=2&gps=true&shutdown=true"},
        {true, true, true, 2, "&format=2&gps=true&shutdown=true&maxcommands=2"},
        {true, true, true, -5, "&format=2&gps=true&shutdown=true&maxcommands=-5"}};
    ids.clear();
    for (const Case& test : cases) {
        ExpectRequest(test, 0, "0");
    }
}

TEST_F(PollRequest, MaxCommandsZeroWithGpsIsSent) {
    ExpectRequest({true, true, false, 0, "&id=P1&format=2&gps=true&maxcommands=0"}, 0, "0");
}

TEST_F(PollRequest, MaxCommandsOneIsNotSent) {
    ExpectRequest({true, false, false, 1, "&id=P1&format=2"}, 0, "0");
}

TEST_F(PollRequest, MaxCommandsOfTheExtremes) {
    const std::string parameters = "&id=P1&format=2&gps=true&maxcommands=";
    ExpectRequest({true, true, false, LONG_MAX, parameters + std::to_string(LONG_MAX)}, 0, "0");
    ExpectRequest({true, true, false, LONG_MIN, parameters + std::to_string(LONG_MIN)}, 0, "0");
    ExpectRequest({true, true, false, -1, parameters + "-1"}, 0, "0");
}

TEST_F(PollRequest, NoIdentifierMeansNoParameter) {
    ExpectIds({}, "");
}

TEST_F(PollRequest, TwoIdentifiersInTheirOrder) {
    ExpectIds({"P2", "P1"}, "&id=P2&id=P1");
}

TEST_F(PollRequest, IdentifiersAreEscapedOneByOne) {
    ExpectIds({"a b", "c&d=e", "/", "a b"}, "&id=a%20b&id=c%26d%3De&id=%2F&id=a%20b");
}

TEST_F(PollRequest, EmptyIdentifierIsSentEmpty) {
    ExpectIds({"", "x", ""}, "&id=&id=x&id=");
}

TEST_F(PollRequest, ManyIdentifiersInTheirOrder) {
    std::vector<std::string> polled;
    std::string parameters;
    for (int i = 0; i < 500; ++i) {
        polled.push_back("P" + std::to_string(i));
        parameters += "&id=" + polled.back();
    }
    ExpectIds(polled, parameters);
}

TEST_F(PollRequest, NegativePollTimeIsAnHour) {
    ExpectLimit(-1, "3600000", 3661, 3660);
    ExpectLimit(LONG_MIN, "3600000", 3661, 3660);
}

TEST_F(PollRequest, PollTimeOfZeroLeavesAMinute) {
    ExpectLimit(0, "0", 61, 60);
}

TEST_F(PollRequest, PartOfASecondCountsWhole) {
    ExpectLimit(1, "1", 62, 61);
    ExpectLimit(999, "999", 62, 61);
    ExpectLimit(1000, "1000", 62, 61);
    ExpectLimit(1001, "1001", 63, 62);
}

TEST_F(PollRequest, LongestPollTimeThatLibcurlTakes) {
    ExpectLimit(2147422000, "2147422000", 2147483, 2147482);
}

TEST_F(PollRequest, LongerPollTimesAreRefusedByLibcurl) {
    ExpectLimitRefused(2147422001, 2147484);
    ExpectLimitRefused(LONG_MAX, LONG_MAX / 1000 + 62);
}

TEST_F(PollRequest, PollTimeOfAnHourIsTheDefault) {
    ExpectLimit(3600000, "3600000", 3661, 3660);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
