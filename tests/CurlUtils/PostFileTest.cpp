#include "CurlUtils/TransferTest.h"
#include "support/AllocationLimit.h"
#include "support/ClosedPort.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::PostFile;
using Lines = std::vector<std::string>;

const Lines releases{"curl_formfree", "curl_slist_free_all", "curl_multi_cleanup",
                     "curl_easy_cleanup"};

/// Keeps one of the like runs of `period` calls: how often a transfer waits depends on the network.
Lines WithoutRepetitions(const Lines& calls, std::size_t period) {
    Lines kept;
    for (const std::string& call : calls) {
        kept.push_back(call);
        const auto size = static_cast<std::ptrdiff_t>(period);
        if (kept.size() >= 2 * period &&
            std::equal(kept.end() - size, kept.end(), kept.end() - 2 * size)) {
            kept.resize(kept.size() - period);
        }
    }
    return kept;
}

class PostFileExchange : public TransferTest {};

TEST_F(PostFileExchange, MakesItsCallsInTheirOrder) {
    const ScriptedServer server(OkReply(""));
    const std::string url = Url(server);
    Post(url, "abc", 300);
    Lines calls;
    for (const std::string& call : interposer.Calls()) {
        // Neither the temporary file's name nor a waiting time is the same twice.
        const bool varies =
            call.compare(0, 7, "select ") == 0 || call.compare(0, 17, "curl_formadd file") == 0;
        calls.push_back(varies ? call.substr(0, call.find(' ')) : call);
    }
    EXPECT_EQ(WithoutRepetitions(calls, 4),
              (Lines{"curl_formadd",
                     "curl_formadd",
                     "curl_formadd submit 4 send",
                     "curl_easy_init",
                     "curl_multi_init",
                     "curl_easy_setopt 20011",
                     "curl_easy_setopt 20079",
                     "curl_easy_setopt 10029",
                     "curl_easy_setopt 10001",
                     "curl_slist_append Expect:",
                     "curl_easy_setopt 10002 " + url,
                     "curl_easy_setopt 99 1",
                     "curl_easy_setopt 78 10",
                     "curl_easy_setopt 13 301",
                     "curl_easy_setopt 112 300",
                     "curl_easy_setopt 10023",
                     "curl_easy_setopt 10024",
                     "curl_multi_add_handle",
                     "curl_multi_perform",
                     "curl_multi_timeout",
                     "curl_multi_fdset",
                     "select",
                     "curl_multi_perform",
                     "curl_easy_getinfo " + std::to_string(CURLINFO_CONNECT_TIME),
                     "curl_formfree",
                     "curl_slist_free_all",
                     "curl_multi_cleanup",
                     "curl_easy_cleanup"}));
}

TEST_F(PostFileExchange, KeepsTheReply) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\nA: b\r\nContent-Length: 3\r\n\r\n" +
                                std::string("a\0b", 3));
    const PostFile post = Post(Url(server), "abc");
    EXPECT_EQ(post.headers,
              (Lines{"HTTP/1.1 200 OK\r\n", "A: b\r\n", "Content-Length: 3\r\n", "\r\n"}));
    EXPECT_EQ(post.body, std::string("a\0b", 3));
}

TEST_F(PostFileExchange, RefusalsAreRepliesLikeAnyOther) {
    for (const char* const status : {"404 Not Found", "500 Internal Server Error", "302 Found"}) {
        const std::string line = std::string("HTTP/1.1 ") + status + "\r\n";
        const ScriptedServer server(line + "Location: /y\r\nContent-Length: 0\r\n\r\n");
        EXPECT_EQ(Post(Url(server), "abc").headers.front(), line);
        EXPECT_EQ(server.Requests().size(), 1U);
    }
}

TEST_F(PostFileExchange, WaitsOnceThoughTheFirstPerformHasEndedAll) {
    // libcurl ends such a transfer before it opens a socket.
    const std::string url = "nope://127.0.0.1/";
    ExpectThrows<CurlUtils::ConnectionFailure>([&] { Post(url, "abc"); },
                                               "Failed to connect to " + url);
    Lines calls = interposer.Calls();
    calls.erase(calls.begin(), std::find(calls.begin(), calls.end(), "curl_multi_add_handle"));
    EXPECT_EQ(calls,
              (Lines{"curl_multi_add_handle", "curl_multi_perform", "curl_multi_timeout",
                     "curl_multi_fdset", "select 0 0 1", "curl_multi_perform",
                     "curl_easy_getinfo " + std::to_string(CURLINFO_CONNECT_TIME), "curl_formfree",
                     "curl_slist_free_all", "curl_multi_cleanup", "curl_easy_cleanup"}));
}

TEST_F(PostFileExchange, ReplyThatBreaksOffBehindItsFirstLineCountsAsDone) {
    const ScriptedServer server(
        Script{ReadRequest(), Send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n"), Reset()});
    EXPECT_EQ(Post(Url(server), "abc").headers.front(), "HTTP/1.1 200 OK\r\n");
}

TEST_F(PostFileExchange, ReplyThatCannotBeStoredCountsAsDone) {
    const std::string body = PositionedBytes(300000);
    const ScriptedServer server(OkReply(body));
    const std::string url = Url(server);
    const AllocationLimit limit(100000);
    const PostFile post = Post(url, "abc");
    EXPECT_EQ(post.headers.size(), 3U);
    EXPECT_LT(post.body.size(), 100000U);
    EXPECT_EQ(body.compare(0, post.body.size(), post.body), 0);
}

TEST_F(PostFileExchange, NeverPerformsBlocking) {
    interposer.Fail("curl_easy_perform", CURLE_OUT_OF_MEMORY);
    const ScriptedServer server(OkReply(""));
    EXPECT_NO_THROW(Post(Url(server), "abc"));
}

TEST_F(PostFileExchange, WritesNothingAnywhere) {
    const ScriptedServer server(OkReply("reply"));
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    Post(Url(server), "abc");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

class PostFileFailure : public TransferTest {
protected:
    /// Where the connection is refused, unless a call fails before.
    std::string Unserved() const {
        return "http://" + closed.Address() + "/x";
    }

    const ClosedPort closed;
};

TEST_F(PostFileFailure, RefusedConnectionIsAConnectionFailure) {
    ExpectThrows<CurlUtils::ConnectionFailure>([&] { Post(Unserved(), "abc"); },
                                               "Failed to connect to " + Unserved());
    EXPECT_EQ(Releases(interposer), releases);
}

TEST_F(PostFileFailure, MissingFileIsFoundOnlyAfterTheConnection) {
    const ScriptedServer server(Script{Stall()});
    const std::string url = Url(server);
    ExpectThrows<CurlUtils::ServerDidNotRespond>(
        [&] { PostFile(url, "content", Folder() + "/none", true, false, 20); },
        "No response from " + url);
    EXPECT_EQ(Releases(interposer), releases);
}

TEST_F(PostFileFailure, NoMultiHandle) {
    interposer.Fail("curl_multi_init");
    ExpectThrows<std::runtime_error>([&] { Post(Unserved(), "abc"); }, "curl_multi_init() failed");
    EXPECT_EQ(interposer.CallsTo("curl_easy_setopt"), Lines{});
    EXPECT_EQ(Releases(interposer), (Lines{"curl_formfree", "curl_easy_cleanup"}));
}

TEST_F(PostFileFailure, AddHandleFails) {
    interposer.Fail("curl_multi_add_handle", CURLM_ADDED_ALREADY);
    ExpectMultiError([&] { Post(Unserved(), "abc"); }, "curl_multi_add_handle()",
                     CURLM_ADDED_ALREADY);
    EXPECT_EQ(interposer.CallsTo("curl_multi_perform"), Lines{});
    EXPECT_EQ(Releases(interposer), releases);
}

TEST_F(PostFileFailure, FirstPerformFails) {
    interposer.Fail("curl_multi_perform", CURLM_CALL_MULTI_PERFORM);
    ExpectMultiError([&] { Post(Unserved(), "abc"); }, "curl_multi_perform()",
                     CURLM_CALL_MULTI_PERFORM);
    EXPECT_EQ(interposer.CallsTo("curl_multi_timeout"), Lines{});
    EXPECT_EQ(Releases(interposer), releases);
}

TEST_F(PostFileFailure, PerformBehindAWaitFails) {
    interposer.Fail("curl_multi_perform", CURLM_INTERNAL_ERROR, 2);
    ExpectMultiError([&] { Post(Unserved(), "abc"); }, "curl_multi_perform()",
                     CURLM_INTERNAL_ERROR);
    EXPECT_EQ(interposer.CallsTo("select").size(), 1U);
    EXPECT_EQ(Releases(interposer), releases);
}

TEST_F(PostFileFailure, TimeoutFailsUnderItsMisspeltLabel) {
    interposer.Fail("curl_multi_timeout", CURLM_BAD_HANDLE);
    ExpectMultiError([&] { Post(Unserved(), "abc"); }, "curl_multi_timoeut", CURLM_BAD_HANDLE);
    EXPECT_EQ(interposer.CallsTo("curl_multi_fdset"), Lines{});
    EXPECT_EQ(Releases(interposer), releases);
}

TEST_F(PostFileFailure, FdsetFails) {
    interposer.Fail("curl_multi_fdset", CURLM_BAD_HANDLE);
    ExpectMultiError([&] { Post(Unserved(), "abc"); }, "curl_multi_fdset()", CURLM_BAD_HANDLE);
    EXPECT_EQ(interposer.CallsTo("select"), Lines{});
    EXPECT_EQ(Releases(interposer), releases);
}

TEST_F(PostFileFailure, SelectFails) {
    interposer.Fail("select", -1);
    ExpectThrows<std::runtime_error>([&] { Post(Unserved(), "abc"); },
                                     "select() failed while performing file transfer");
    EXPECT_EQ(interposer.CallsTo("curl_multi_perform").size(), 1U);
    EXPECT_EQ(Releases(interposer), releases);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
