#include "CurlUtils/TransferTest.h"
#include "support/ClosedPort.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::PostFile2;
using Lines = std::vector<std::string>;

class PostFile2Exchange : public TransferTest {};

TEST_F(PostFile2Exchange, MakesItsCallsInTheirOrder) {
    const ScriptedServer server(OkReply(""));
    const std::string url = Url(server);
    Post2(url, "abc", 300);
    Lines calls = interposer.Calls();
    ASSERT_GT(calls.size(), 2U);
    // The first two name the temporary file.
    EXPECT_EQ(calls[0].substr(0, 21), "curl_formadd file 10 ");
    EXPECT_EQ(calls[1].substr(0, 24), "curl_formadd filename 4 ");
    EXPECT_EQ(calls[0].substr(21), calls[1].substr(24));
    calls.erase(calls.begin(), calls.begin() + 2);
    EXPECT_EQ(
        calls,
        (Lines{"curl_formadd submit 4 send", "curl_easy_init", "curl_easy_setopt 20011",
               "curl_easy_setopt 20079", "curl_easy_setopt 10029", "curl_easy_setopt 10001",
               "curl_slist_append Expect:", "curl_easy_setopt 10002 " + url,
               "curl_easy_setopt 99 1", "curl_easy_setopt 78 10", "curl_easy_setopt 13 301",
               "curl_easy_setopt 112 300", "curl_easy_setopt 10023", "curl_easy_setopt 10024",
               "curl_easy_perform", "curl_easy_getinfo " + std::to_string(CURLINFO_CONNECT_TIME),
               "curl_formfree", "curl_slist_free_all", "curl_easy_cleanup"}));
}

TEST_F(PostFile2Exchange, KeepsTheReply) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\nA: b\r\nContent-Length: 3\r\n\r\n" +
                                std::string("a\0b", 3));
    const PostFile2 post = Post2(Url(server), "abc");
    EXPECT_EQ(post.headers,
              (Lines{"HTTP/1.1 200 OK\r\n", "A: b\r\n", "Content-Length: 3\r\n", "\r\n"}));
    EXPECT_EQ(post.body, std::string("a\0b", 3));
}

TEST_F(PostFile2Exchange, RefusalsAreRepliesLikeAnyOther) {
    for (const char* const status : {"404 Not Found", "500 Internal Server Error", "302 Found"}) {
        const std::string line = std::string("HTTP/1.1 ") + status + "\r\n";
        const ScriptedServer server(line + "Location: /y\r\nContent-Length: 0\r\n\r\n");
        EXPECT_EQ(Post2(Url(server), "abc").headers.front(), line);
        EXPECT_EQ(server.Requests().size(), 1U);
    }
}

TEST_F(PostFile2Exchange, InterimReplyStandsBeforeTheFinalOne) {
    const ScriptedServer server("HTTP/1.1 100 Continue\r\n\r\n" + OkReply(""));
    const PostFile2 post = Post2(Url(server), "abc");
    EXPECT_EQ(post.headers.at(0), "HTTP/1.1 100 Continue\r\n");
    EXPECT_EQ(post.headers.at(2), "HTTP/1.1 200 OK\r\n");
}

class PostFile2Failure : public TransferTest {};

TEST_F(PostFile2Failure, MissingFileIsLibcurlsReadError) {
    const ScriptedServer server(OkReply(""));
    const std::string path = Folder() + "/none";
    const auto post = [&] {
        PostFile2(Url(server), "content", path, logger, true, false, 20);
    };
    ExpectEasyError(post, "curl_easy_perform", CURLE_READ_ERROR);
    EXPECT_EQ(Releases(interposer),
              (Lines{"curl_formfree", "curl_slist_free_all", "curl_easy_cleanup"}));
}

TEST_F(PostFile2Failure, RefusedConnectionIsACurlEasyException) {
    const ClosedPort closed;
    ExpectEasyError([&] { Post2("http://" + closed.Address() + "/x", "abc"); }, "curl_easy_perform",
                    CURLE_COULDNT_CONNECT);
    EXPECT_EQ(Releases(interposer),
              (Lines{"curl_formfree", "curl_slist_free_all", "curl_easy_cleanup"}));
}

TEST_F(PostFile2Failure, PerformFails) {
    interposer.Fail("curl_easy_perform", CURLE_OUT_OF_MEMORY);
    ExpectEasyError([&] { Post2("http://127.0.0.1/x", "abc"); }, "curl_easy_perform",
                    CURLE_OUT_OF_MEMORY);
    EXPECT_EQ(interposer.CallsTo("curl_easy_getinfo"), Lines{});
    EXPECT_EQ(Releases(interposer),
              (Lines{"curl_formfree", "curl_slist_free_all", "curl_easy_cleanup"}));
}

TEST_F(PostFile2Failure, NeedsNoMultiHandle) {
    interposer.Fail("curl_multi_init");
    const ScriptedServer server(OkReply(""));
    EXPECT_NO_THROW(Post2(Url(server), "abc"));
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
