#include "CurlUtils/TransferTest.h"
#include "support/ClosedPort.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Lines = std::vector<std::string>;

class HttpGetFailure : public TransferTest {
protected:
    /// Expects that the request line was logged, and nothing else.
    void ExpectOnlyRequestLogged(const std::string& url) {
        EXPECT_EQ(logger.Text(), "HTTP GET " + url + "\n");
    }

    /// Where no exchange is reached.
    const std::string unasked = "http://127.0.0.1/x";
};

TEST_F(HttpGetFailure, RefusedConnectionIsACurlEasyException) {
    const ClosedPort closed;
    const std::string url = "http://" + closed.Address() + "/x";
    ExpectEasyError([&] { Get(url); }, "curl_easy_perform", CURLE_COULDNT_CONNECT);
    ExpectOnlyRequestLogged(url);
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
}

TEST_F(HttpGetFailure, UnknownSchemeIsACurlEasyException) {
    ExpectEasyError([&] { Get("nope://127.0.0.1/"); }, "curl_easy_perform",
                    CURLE_UNSUPPORTED_PROTOCOL);
}

TEST_F(HttpGetFailure, UrlWithBlankOrControlCharacterIsRefusedUnsent) {
    const ScriptedServer server(OkReply(""));
    for (const char* const bad : {" ", "\r\nA: b", "\t", "\x7F"}) {
        ExpectEasyError([&] { Get(Url(server) + bad); }, "curl_easy_perform", CURLE_URL_MALFORMAT);
    }
    EXPECT_EQ(server.Requests(), Lines{});
}

TEST_F(HttpGetFailure, EmptyUrlIsRefused) {
    ExpectEasyError([&] { Get(""); }, "curl_easy_perform", CURLE_URL_MALFORMAT);
    ExpectOnlyRequestLogged("");
}

TEST_F(HttpGetFailure, NoEasyHandle) {
    interposer.Fail("curl_easy_init");
    ExpectThrows<std::runtime_error>([&] { Get(unasked); }, "curl_easy_init() failed");
    EXPECT_EQ(interposer.Calls(), Lines{"curl_easy_init"});
    ExpectOnlyRequestLogged(unasked);
}

TEST_F(HttpGetFailure, EachOptionRefusedEndsTheGetUnperformed) {
    // Four of the base, seven of the request.
    for (std::size_t nth = 1; nth <= 11; ++nth) {
        const std::size_t before = interposer.Calls().size();
        const std::size_t options = interposer.CallsTo("curl_easy_setopt").size();
        interposer.Fail("curl_easy_setopt", CURLE_UNKNOWN_OPTION, static_cast<int>(nth));
        ExpectEasyError([&] { Get(unasked); }, "curl_easy_setopt", CURLE_UNKNOWN_OPTION);
        EXPECT_EQ(interposer.CallsTo("curl_easy_setopt").size() - options, nth);
        EXPECT_EQ(Releases(interposer, before), Lines{"curl_easy_cleanup"});
        EXPECT_EQ(interposer.Unreleased(), 0);
    }
    EXPECT_EQ(interposer.CallsTo("curl_easy_perform"), Lines{});
}

TEST_F(HttpGetFailure, RefusedOptionLeavesOnlyTheRequestLineInTheLog) {
    interposer.Fail("curl_easy_setopt", CURLE_UNKNOWN_OPTION, 11);
    ExpectEasyError([&] { Get(unasked); }, "curl_easy_setopt", CURLE_UNKNOWN_OPTION);
    ExpectOnlyRequestLogged(unasked);
}

TEST_F(HttpGetFailure, NoOptionComesBehindTheEleventh) {
    interposer.Fail("curl_easy_setopt", CURLE_UNKNOWN_OPTION, 12);
    const ScriptedServer server(OkReply(""));
    EXPECT_NO_THROW(Get(Url(server)));
}

TEST_F(HttpGetFailure, PerformFails) {
    interposer.Fail("curl_easy_perform", CURLE_OUT_OF_MEMORY);
    ExpectEasyError([&] { Get(unasked); }, "curl_easy_perform", CURLE_OUT_OF_MEMORY);
    EXPECT_EQ(interposer.CallsTo("curl_easy_getinfo"), Lines{});
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
    ExpectOnlyRequestLogged(unasked);
}

TEST_F(HttpGetFailure, GetinfoFails) {
    const ScriptedServer server(OkReply("reply"));
    interposer.Fail("curl_easy_getinfo", CURLE_BAD_FUNCTION_ARGUMENT);
    ExpectEasyError([&] { Get(Url(server)); }, "curl_easy_getinfo()", CURLE_BAD_FUNCTION_ARGUMENT);
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
    ExpectOnlyRequestLogged(Url(server));
}

TEST_F(HttpGetFailure, ExchangeWithoutAConnectionIsAConnectionFailure) {
    // libcurl reads a file without connecting anywhere.
    const std::string url = "file://" + MakeFile("reply", "text");
    ExpectThrows<CurlUtils::ConnectionFailure>([&] { Get(url); }, "Failed to connect to " + url);
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
    ExpectOnlyRequestLogged(url);
}

TEST_F(HttpGetFailure, ReplyWithoutHeaderLinesIsServerDidNotRespond) {
    // A dictionary's answer is a body without header lines.
    const ScriptedServer server(Script{Send("text"), HalfClose(), Stall()});
    const std::string url = "dict://" + server.Address() + "/d:x";
    ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { Get(url); }, "No response from " + url);
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
    ExpectOnlyRequestLogged(url);
}

TEST_F(HttpGetFailure, ConnectTimeOfZeroFailsAReplyWithHeaders) {
    const ScriptedServer server(OkReply(""));
    for (const double seconds : {0.0, -1.0}) {
        interposer.SetConnectTime(seconds);
        ExpectThrows<CurlUtils::ConnectionFailure>([&] { Get(Url(server)); },
                                                   "Failed to connect to " + Url(server));
    }
}

TEST_F(HttpGetFailure, LeastConnectTimePasses) {
    const ScriptedServer server(OkReply(""));
    interposer.SetConnectTime(1e-6);
    EXPECT_NO_THROW(Get(Url(server)));
}

TEST_F(HttpGetFailure, ConnectTimeIsTestedBeforeTheHeaders) {
    interposer.SkipPerform();
    interposer.SetConnectTime(0.0);
    ExpectThrows<CurlUtils::ConnectionFailure>([&] { Get(unasked); },
                                               "Failed to connect to " + unasked);
    interposer.SetConnectTime(0.1);
    ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { Get(unasked); },
                                                 "No response from " + unasked);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
