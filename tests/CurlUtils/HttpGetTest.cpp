#include "CurlUtils/TransferTest.h"
#include "support/Requests.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::HttpGet;
using Lines = std::vector<std::string>;

class HttpGetRequest : public TransferTest {};

TEST_F(HttpGetRequest, HasExactlyThreeHeaderLines) {
    const ScriptedServer server(OkReply(""));
    Get(Url(server));
    EXPECT_EQ(server.OnlyRequest(),
              "GET /x HTTP/1.1\r\nHost: " + server.Address() + "\r\nAccept: */*\r\n\r\n");
}

TEST_F(HttpGetRequest, TargetTravelsAsItIsWritten) {
    const ScriptedServer server(OkReply(""));
    const std::string target = "/xp?op=a&id=%41+b'\"<>|{}[]\\^`\xC3\xA4//../.";
    Get("http://" + server.Address() + target);
    EXPECT_EQ(server.OnlyRequest().substr(0, 21), "GET /xp?op=a&id=%41+b");
    EXPECT_EQ(server.OnlyRequest(), GetRequest(server.Address(), target));
}

TEST_F(HttpGetRequest, FragmentIsNotSent) {
    const ScriptedServer server(OkReply(""));
    Get("http://" + server.Address() + "/x?a=1#b&c=2");
    EXPECT_EQ(server.OnlyRequest(), GetRequest(server.Address(), "/x?a=1"));
}

TEST_F(HttpGetRequest, SetsTheOptionsInTheirOrder) {
    const ScriptedServer server(OkReply(""));
    const std::string url = Url(server);
    Get(url, 300);
    EXPECT_EQ(
        interposer.Calls(),
        (Lines{"curl_easy_init", "curl_easy_setopt 20011", "curl_easy_setopt 20079",
               "curl_easy_setopt 10029", "curl_easy_setopt 10001", "curl_easy_setopt 10002 " + url,
               "curl_easy_setopt 43 1", "curl_easy_setopt 99 1", "curl_easy_setopt 78 10",
               "curl_easy_setopt 13 301", "curl_easy_setopt 112 300", "curl_easy_setopt 41 0",
               "curl_easy_perform", "curl_easy_getinfo " + std::to_string(CURLINFO_CONNECT_TIME),
               "curl_easy_cleanup"}));
}

TEST_F(HttpGetRequest, VerboseShowsLibcurlsTraceOnStandardError) {
    const ScriptedServer server(OkReply(""));
    ::testing::internal::CaptureStderr();
    const HttpGet get(Url(server), logger, true, 20);
    const std::string trace = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(trace.find("> GET /x HTTP/1.1\r\n"), std::string::npos) << trace;
    EXPECT_EQ(interposer.CallsTo("curl_easy_setopt 41"), Lines{"curl_easy_setopt 41 1"});
}

TEST_F(HttpGetRequest, WithoutVerboseStandardErrorIsQuiet) {
    const ScriptedServer server(OkReply(""));
    ::testing::internal::CaptureStderr();
    Get(Url(server));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

class HttpGetReply : public TransferTest {};

TEST_F(HttpGetReply, EmptyBodyOf200LeavesHeadersAndAnEmptyBody) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\nA: b\r\nContent-Length: 0\r\n\r\n");
    const HttpGet get = Get(Url(server));
    EXPECT_EQ(get.headers,
              (Lines{"HTTP/1.1 200 OK\r\n", "A: b\r\n", "Content-Length: 0\r\n", "\r\n"}));
    EXPECT_EQ(get.body, "");
}

TEST_F(HttpGetReply, Status404IsAReplyLikeAnyOther) {
    const ScriptedServer server("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nnone");
    const HttpGet get = Get(Url(server));
    EXPECT_EQ(get.headers.front(), "HTTP/1.1 404 Not Found\r\n");
    EXPECT_EQ(get.body, "none");
}

TEST_F(HttpGetReply, Status500IsAReplyLikeAnyOther) {
    const ScriptedServer server(StatusReply("500 Internal Server Error"));
    EXPECT_EQ(Get(Url(server)).headers.front(), "HTTP/1.1 500 Internal Server Error\r\n");
}

TEST_F(HttpGetReply, RedirectIsNotFollowed) {
    const ScriptedServer server("HTTP/1.1 302 Found\r\nLocation: /y\r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(Get(Url(server)).headers.front(), "HTTP/1.1 302 Found\r\n");
    EXPECT_EQ(server.OnlyRequest(), GetRequest(server.Address(), "/x"));
}

TEST_F(HttpGetReply, ContentCodingIsNotUndone) {
    const ScriptedServer server(
        "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 3\r\n\r\n\x1F\x8B\x08");
    EXPECT_EQ(Get(Url(server)).body, "\x1F\x8B\x08");
}

TEST_F(HttpGetReply, BodyWithoutLengthLastsUntilTheServerCloses) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\n\r\nto the end");
    EXPECT_EQ(Get(Url(server)).body, "to the end");
}

class HttpGetClose : public TransferTest {};

TEST_F(HttpGetClose, LeavesHeadersAndBodyUntouched) {
    const ScriptedServer server(OkReply("reply"));
    HttpGet get = Get(Url(server));
    const Lines headers = get.headers;
    get.Close();
    EXPECT_EQ(get.headers, headers);
    EXPECT_EQ(get.headers.size(), 3U);
    EXPECT_EQ(get.body, "reply");
}

TEST_F(HttpGetClose, FreesTheHandleAtOnce) {
    const ScriptedServer server(OkReply(""));
    HttpGet get = Get(Url(server));
    EXPECT_EQ(Releases(interposer), Lines{});
    get.Close();
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
}

TEST_F(HttpGetClose, TwiceAndThenDestructionFreesTheHandleOnce) {
    const ScriptedServer server(OkReply(""));
    {
        HttpGet get = Get(Url(server));
        get.Close();
        get.Close();
    }
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
}

TEST_F(HttpGetClose, IsNotNeeded) {
    const ScriptedServer server(OkReply(""));
    Get(Url(server));
    EXPECT_EQ(Releases(interposer), Lines{"curl_easy_cleanup"});
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
