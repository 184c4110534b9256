#include "HalcyrREST/ClientTest.h"
#include "support/GlobalLocale.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

/// All that ExpectOK needs of a transfer.
struct Transfer {
    std::vector<std::string> headers;
};

void ExpectPasses(const std::vector<std::string>& headers) {
    EXPECT_NO_THROW(ExpectOK(Transfer{headers}, "L")) << ::testing::PrintToString(headers);
}

void ExpectNotOK(const std::vector<std::string>& headers, const std::string& shown) {
    ExpectThrows<std::runtime_error>([&] { ExpectOK(Transfer{headers}, "Turn Payload Off"); },
                                     "For Turn Payload Off, the HTTP header did not return OK: " +
                                         shown);
}

void ExpectNoHeader(const std::vector<std::string>& headers) {
    ExpectThrows<std::runtime_error>([&] { ExpectOK(Transfer{headers}, "Run Script"); },
                                     "For Run Script, no HTTP header was returned");
}

TEST(ExpectOK, Status200OKPasses) {
    ExpectPasses({"HTTP/1.1 200 OK\r\n"});
    ExpectPasses({"HTTP/1.1 200 OK\r\n", "Content-Length: 0\r\n", "\r\n"});
}

TEST(ExpectOK, WhiteSpaceBehindOKIsTrimmed) {
    ExpectPasses({"HTTP/1.1 200 OK"});
    ExpectPasses({"HTTP/1.1 200 OK\n"});
    ExpectPasses({"HTTP/1.1 200 OK \t\v\f\r\n"});
}

TEST(ExpectOK, TheCodeIsNotLookedAt) {
    ExpectPasses({"HTTP/1.1 500 OK\r\n"});
    ExpectPasses({"HTTP OK\r\n"});
    ExpectPasses({"HTTP/1.1 500 Not OK\r\n"});
}

TEST(ExpectOK, Status404FailsWithTheTrimmedLine) {
    ExpectNotOK({"HTTP/1.1 404 Not Found\r\n"}, "HTTP/1.1 404 Not Found");
    ExpectNotOK({"HTTP/1.1 404  Not\tFound \t\r\n"}, "HTTP/1.1 404  Not\tFound");
}

TEST(ExpectOK, InterimStatusBeforeOKFails) {
    ExpectNotOK({"HTTP/1.1 100 Continue\r\n", "\r\n", "HTTP/1.1 200 OK\r\n", "\r\n"},
                "HTTP/1.1 100 Continue");
}

TEST(ExpectOK, OnlyTheFirstStatusLineCounts) {
    ExpectPasses({"HTTP/1.1 200 OK\r\n", "\r\n", "HTTP/1.1 404 Not Found\r\n"});
}

TEST(ExpectOK, NoHeaderLinesFail) {
    ExpectNoHeader({});
}

TEST(ExpectOK, OnlyOtherLinesFail) {
    ExpectNoHeader({"Content-Type: text/plain\r\n", "\r\n"});
    ExpectNoHeader({"", ""});
    ExpectNoHeader({" HTTP/1.1 200 OK\r\n"});
    ExpectNoHeader({"HTT", "X-HTTP: OK\r\n"});
}

TEST(ExpectOK, StatusLineInSmallLettersIsNone) {
    ExpectNoHeader({"http/1.1 200 OK\r\n"});
    ExpectNoHeader({"Http/1.1 200 OK\r\n"});
}

TEST(ExpectOK, EmptyElementsAndOtherLinesAreSkipped) {
    ExpectPasses({"", "Content-Type: x\r\n", "\r\n", "", "HTTP/1.1 200 OK\r\n"});
}

TEST(ExpectOK, OKIsComparedWithItsCase) {
    ExpectNotOK({"HTTP/1.1 200 ok\r\n"}, "HTTP/1.1 200 ok");
    ExpectNotOK({"HTTP/1.1 200 Ok\r\n"}, "HTTP/1.1 200 Ok");
}

TEST(ExpectOK, OKNeedsItsBlank) {
    ExpectNotOK({"HTTP/1.1 200OK\r\n"}, "HTTP/1.1 200OK");
    ExpectNotOK({"HTTP/1.1 200\tOK\r\n"}, "HTTP/1.1 200\tOK");
}

TEST(ExpectOK, TextBehindOKFails) {
    ExpectNotOK({"HTTP/1.1 200 OK.\r\n"}, "HTTP/1.1 200 OK.");
    ExpectNotOK({"HTTP/1.1 200 OKAY\r\n"}, "HTTP/1.1 200 OKAY");
}

TEST(ExpectOK, NoReasonPhraseFails) {
    ExpectNotOK({"HTTP/1.1 200\r\n"}, "HTTP/1.1 200");
    ExpectNotOK({"HTTP/1.1 200 \r\n"}, "HTTP/1.1 200");
}

TEST(ExpectOK, HTTPAloneIsAStatusLine) {
    ExpectNotOK({"HTTP"}, "HTTP");
    ExpectNotOK({"HTTP\r\n", "HTTP/1.1 200 OK\r\n"}, "HTTP");
}

TEST(ExpectOK, LabelStandsInTheMessageAsItIs) {
    ExpectThrows<std::runtime_error>([] { ExpectOK(Transfer(), ""); },
                                     "For , no HTTP header was returned");
    ExpectThrows<std::runtime_error>([] { ExpectOK(Transfer{{"HTTP x"}}, "a, b"); },
                                     "For a, b, the HTTP header did not return OK: HTTP x");
}

TEST(ExpectOK, WhiteSpaceIsWhatTheGlobalLocaleSays) {
    ExpectNotOK({"HTTP/1.1 200 OK!"}, "HTTP/1.1 200 OK!");
    const GlobalLocale locale(new OddLetters);
    ExpectPasses({"HTTP/1.1 200 OK!"});
    ExpectNotOK({"HTTP/1.1 404 No!"}, "HTTP/1.1 404 No");
}

class ExpectOKOnTransfers : public ClientTest {};

TEST_F(ExpectOKOnTransfers, BothKindsOfTransferPass) {
    const ScriptedServer server(OkReply("x"));
    const std::string url = "http://" + server.Address() + "/";
    EXPECT_NO_THROW(ExpectOK(CurlUtils::HttpGet(url, logger, false, 9), "L"));
    EXPECT_NO_THROW(ExpectOK(CurlUtils::PostFile2(url, "n", "c", logger, false, false, 9), "L"));
}

TEST_F(ExpectOKOnTransfers, BothKindsOfTransferFail) {
    const ScriptedServer server(StatusReply("404 Not Found"));
    const std::string url = "http://" + server.Address() + "/";
    const std::string message = "For L, the HTTP header did not return OK: HTTP/1.1 404 Not Found";
    const CurlUtils::HttpGet get(url, logger, false, 9);
    ExpectThrows<std::runtime_error>([&] { ExpectOK(get, "L"); }, message);
    const CurlUtils::PostFile2 post(url, "n", "c", logger, false, false, 9);
    ExpectThrows<std::runtime_error>([&] { ExpectOK(post, "L"); }, message);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
