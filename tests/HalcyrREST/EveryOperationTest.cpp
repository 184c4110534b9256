// What all operations have in common, shown for each of them.

#include "HalcyrREST/ClientTest.h"
#include "HalcyrREST/ClosedPort.h"
#include "HalcyrREST/Operations.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

class EveryOperation : public ClientTest, public ::testing::WithParamInterface<Operation> {
protected:
    void SetUp() override {
        ClientTest::SetUp();
        file = MakeFile("f.json", "{}");
    }

    void Call(const std::string& address, bool verbose = false) {
        HalcyrREST client(address, logger, verbose);
        GetParam().call(client, "P1", file);
    }

    std::string Url(const std::string& address) const {
        return "http://" + address + GetParam().Target("P1");
    }

    /// Expects that the option was set to this and nothing else.
    void ExpectOption(int option, const std::string& value) const {
        const std::string call = "curl_easy_setopt " + std::to_string(option) + " ";
        EXPECT_EQ(interposer.CallsTo(call), std::vector<std::string>{call + value});
    }

    /// Expects a plain std::runtime_error for that reply, with the operation's label.
    void ExpectRefused(const std::string& reply, const std::string& message) {
        const ScriptedServer server(reply);
        ExpectThrows<std::runtime_error>([&] { Call(server.Address()); },
                                         "For " + GetParam().label + message);
    }

private:
    std::string file;
};

INSTANTIATE_TEST_SUITE_P(Client, EveryOperation, ::testing::ValuesIn(Operations()),
                         [](const auto& test) { return test.param.name; });

TEST_P(EveryOperation, MakesOneExchangeWithItsTarget) {
    const ScriptedServer server(OkReply(GetParam().ReplyBody()));
    Call(server.Address());
    const std::string line =
        (GetParam().isUpload ? "POST " : "GET ") + GetParam().Target("P1") + " HTTP/1.1\r\n";
    EXPECT_EQ(server.OnlyRequest().substr(0, line.size()), line);
    EXPECT_EQ(interposer.CallsTo("curl_easy_init").size(), 1U);
    EXPECT_EQ(interposer.CallsTo("curl_easy_setopt 10002 "),
              std::vector<std::string>{"curl_easy_setopt 10002 " + Url(server.Address())});
}

TEST_P(EveryOperation, ThrowsWithItsLabelForStatus500) {
    ExpectRefused(StatusReply("500 Internal Server Error"),
                  ", the HTTP header did not return OK: HTTP/1.1 500 Internal Server Error");
}

TEST_P(EveryOperation, ThrowsWithItsLabelForAnInterimReply) {
    ExpectRefused("HTTP/1.1 100 Continue\r\n\r\n" + OkReply(GetParam().ReplyBody()),
                  ", the HTTP header did not return OK: HTTP/1.1 100 Continue");
}

TEST_P(EveryOperation, ThrowsWithItsLabelWithoutAnHttpLine) {
    ExpectRefused("http/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK",
                  ", no HTTP header was returned");
}

TEST_P(EveryOperation, RefusedConnectionIsCode7) {
    ExpectEasyError([&] { Call(ClosedPort().Address()); }, "curl_easy_perform",
                    CURLE_COULDNT_CONNECT);
}

TEST_P(EveryOperation, ConnectionClosedWithoutAReplyIsCode52) {
    const ScriptedServer server(Script{ReadRequest()});
    ExpectEasyError([&] { Call(server.Address()); }, "curl_easy_perform", CURLE_GOT_NOTHING);
}

TEST_P(EveryOperation, AddressThatIsNoUrlIsCode3) {
    ExpectEasyError([&] { Call("a b"); }, "curl_easy_perform", CURLE_URL_MALFORMAT);
}

TEST_P(EveryOperation, RefusedOptionIsTold) {
    interposer.Fail("curl_easy_setopt", CURLE_UNKNOWN_OPTION, 5);
    ExpectEasyError([&] { Call("127.0.0.1:1"); }, "curl_easy_setopt", CURLE_UNKNOWN_OPTION);
}

TEST_P(EveryOperation, TransferLayersOtherExceptionsPass) {
    interposer.SkipPerform();
    interposer.SetConnectTime(0.0);
    ExpectThrows<CurlUtils::ConnectionFailure>([&] { Call("h:1"); },
                                               "Failed to connect to " + Url("h:1"));
    interposer.SetConnectTime(0.001);
    ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { Call("h:1"); },
                                                 "No response from " + Url("h:1"));
    interposer.Fail("curl_easy_init");
    ExpectThrows<std::runtime_error>([&] { Call("h:1"); }, "curl_easy_init() failed");
    if (GetParam().isUpload) {
        interposer.Fail("curl_formadd", 2, 2);
        ExpectThrows<CurlUtils::CurlFormException>([&] { Call("h:1"); },
                                                   "curl_formadd() returned 2");
    }
}

TEST_P(EveryOperation, LimitsAre10And300And301Seconds) {
    const ScriptedServer server(OkReply(GetParam().ReplyBody()));
    Call(server.Address());
    ExpectOption(CURLOPT_CONNECTTIMEOUT, "10");
    ExpectOption(CURLOPT_TIMEOUT, "301");
    ExpectOption(CURLOPT_FTP_RESPONSE_TIMEOUT, "300");
}

TEST_P(EveryOperation, VerboseFlagShowsTheExchangeOnStandardError) {
    const ScriptedServer server(OkReply(GetParam().ReplyBody()));
    CaptureStderr();
    Call(server.Address(), true);
    const std::string trace = GetCapturedStderr();
    ExpectOption(CURLOPT_VERBOSE, "1");
    EXPECT_NE(trace.find(GetParam().Target("P1")), std::string::npos) << trace;
}

TEST_P(EveryOperation, WithoutTheVerboseFlagStandardErrorIsSilent) {
    const ScriptedServer server(OkReply(GetParam().ReplyBody()));
    CaptureStderr();
    Call(server.Address(), false);
    EXPECT_EQ(GetCapturedStderr(), "");
    if (GetParam().isUpload) {
        EXPECT_EQ(interposer.CallsTo("curl_easy_setopt 41 "), std::vector<std::string>());
    } else {
        ExpectOption(CURLOPT_VERBOSE, "0");
    }
}

TEST_P(EveryOperation, LoggerWithoutLevelsGetsTheGetLineOnly) {
    const ScriptedServer server(OkReply(GetParam().ReplyBody()));
    Call(server.Address());
    EXPECT_EQ(logger.Text(), GetParam().isUpload ? "" : "HTTP GET " + Url(server.Address()) + "\n");
}

TEST_P(EveryOperation, FailureLeavesTheClientUsable) {
    const ScriptedServer server({Reply(StatusReply("404 Not Found")), Script{ReadRequest()},
                                 Reply(OkReply(GetParam().ReplyBody()))});
    HalcyrREST client(server.Address(), logger, false);
    const std::string path = MakeFile("again.json", "{}");
    EXPECT_THROW(GetParam().call(client, "P1", path), std::runtime_error);
    EXPECT_THROW(GetParam().call(client, "P1", path), CurlUtils::CurlEasyException);
    GetParam().call(client, "P1", path);
    EXPECT_EQ(server.Requests().size(), 3U);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
