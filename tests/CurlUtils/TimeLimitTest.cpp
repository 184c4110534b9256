#include "CurlUtils/TransferTest.h"

#include <chrono>
#include <climits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Lines = std::vector<std::string>;

/// The three kinds of transfer, which share their limits.
enum class Kind { Get, Post2, Post };

class TimeLimit : public TransferTest, public ::testing::WithParamInterface<Kind> {
protected:
    void Transfer(const std::string& url, long seconds) {
        switch (GetParam()) {
        case Kind::Get:
            Get(url, seconds);
            break;
        case Kind::Post2:
            Post2(url, "abc", seconds);
            break;
        case Kind::Post:
            Post(url, "abc", seconds);
            break;
        }
    }

    /// Expects both limits to be set so and to be taken.
    void ExpectLimits(long seconds, const std::string& whole, const std::string& response) {
        const ScriptedServer server(OkReply(""));
        EXPECT_NO_THROW(Transfer(Url(server), seconds));
        EXPECT_EQ(interposer.CallsTo("curl_easy_setopt 13 "),
                  Lines{"curl_easy_setopt 13 " + whole});
        EXPECT_EQ(interposer.CallsTo("curl_easy_setopt 112 "),
                  Lines{"curl_easy_setopt 112 " + response});
        EXPECT_EQ(interposer.CallsTo("curl_easy_setopt 78 "), Lines{"curl_easy_setopt 78 10"});
    }

    /// Expects libcurl to refuse the last of these options.
    void ExpectRefused(long seconds, const Lines& options) {
        ExpectEasyError([&] { Transfer("http://127.0.0.1/x", seconds); }, "curl_easy_setopt",
                        CURLE_BAD_FUNCTION_ARGUMENT);
        Lines set = interposer.CallsTo("curl_easy_setopt 13 ");
        const Lines response = interposer.CallsTo("curl_easy_setopt 112 ");
        set.insert(set.end(), response.begin(), response.end());
        EXPECT_EQ(set, options);
        EXPECT_EQ(interposer.CallsTo("curl_easy_setopt").back(), options.back());
    }
};

INSTANTIATE_TEST_SUITE_P(Of, TimeLimit, ::testing::Values(Kind::Get, Kind::Post2, Kind::Post),
                         [](const ::testing::TestParamInfo<Kind>& kind) {
                             return kind.param == Kind::Get     ? "HttpGet"
                                    : kind.param == Kind::Post2 ? "PostFile2"
                                                                : "PostFile";
                         });

TEST_P(TimeLimit, Of300SecondsIs301ForTheWholeExchange) {
    ExpectLimits(300, "301", "300");
}

TEST_P(TimeLimit, OfZeroIsOneSecond) {
    ExpectLimits(0, "1", "0");
}

TEST_P(TimeLimit, OfAWeekIsTaken) {
    ExpectLimits(604800, "604801", "604800");
}

TEST_P(TimeLimit, GreatestThatLibcurlTakes) {
    ExpectLimits(2147482, "2147483", "2147482");
}

TEST_P(TimeLimit, OneMoreIsRefused) {
    ExpectRefused(2147483, {"curl_easy_setopt 13 2147484"});
}

TEST_P(TimeLimit, GreatestLongIsRefused) {
    ExpectRefused(LONG_MAX, {"curl_easy_setopt 13 " + std::to_string(LONG_MIN)});
}

TEST_P(TimeLimit, LeastLongIsRefused) {
    ExpectRefused(LONG_MIN, {"curl_easy_setopt 13 " + std::to_string(LONG_MIN + 1)});
}

TEST_P(TimeLimit, OfMinusOneIsRefusedByTheResponseLimit) {
    // One more than -1 is 0, which alone would mean no limit at all.
    ExpectRefused(-1, {"curl_easy_setopt 13 0", "curl_easy_setopt 112 -1"});
}

TEST_P(TimeLimit, OfMinusTwoIsRefused) {
    ExpectRefused(-2, {"curl_easy_setopt 13 -1"});
}

class Stalled : public ServedTest {
protected:
    Stalled() : ServedTest({ReadRequest(), Stall()}) {}

    /// libcurl counts in whole milliseconds, from a moment after `begin`.
    void ExpectLasted(Clock::duration least) const {
        EXPECT_GE(Clock::now() - begin, least - 10ms);
    }

    const Clock::time_point begin = Clock::now();
};

TEST_F(Stalled, GetEndsWithLibcurlsTimeoutOneSecondAfterItsLimit) {
    ExpectEasyError([&] { Get(Url(), 1); }, "curl_easy_perform", CURLE_OPERATION_TIMEDOUT);
    ExpectLasted(2s);
    EXPECT_EQ(logger.Text(), "HTTP GET " + Url() + "\n");
}

TEST_F(Stalled, GetWithLimitZeroEndsAfterASecond) {
    ExpectEasyError([&] { Get(Url(), 0); }, "curl_easy_perform", CURLE_OPERATION_TIMEDOUT);
    ExpectLasted(1s);
}

TEST_F(Stalled, UploadEndsWithLibcurlsTimeout) {
    ExpectEasyError([&] { Post2(Url(), "abc", 0); }, "curl_easy_perform", CURLE_OPERATION_TIMEDOUT);
    ExpectLasted(1s);
}

TEST_F(Stalled, MultiUploadHasNoResponse) {
    ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { Post(Url(), "abc", 0); },
                                                 "No response from " + Url());
    ExpectLasted(1s);
}

TEST_F(Stalled, ReplyBetweenTheLimitAndItsExtraSecondArrives) {
    const ScriptedServer late(Script{ReadRequest(), Pause(1300ms), Send(OkReply("late"))});
    EXPECT_EQ(Get(TransferTest::Url(late), 1).body, "late");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
