#include "CurlUtils/TransferTest.h"
#include "support/AllocationLimit.h"

#include <cstdint>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

/// Shows what is protected, and performs an exchange without tests of its own.
class Exchange : public CurlUtils::CurlOperationBase {
public:
    using CurlOperationBase::cleanup;
    using CurlOperationBase::curl;
    using CurlOperationBase::CurlOperationBase;
    using CurlOperationBase::InitCurl;
    using CurlOperationBase::multi;
    using CurlOperationBase::self;
    using CurlOperationBase::SetOpt;
    using CurlOperationBase::url;
    using CurlOperationBase::WriteData;
    using CurlOperationBase::WriteDataFunc;
    using CurlOperationBase::WriteHeader;
    using CurlOperationBase::WriteHeaderFunc;

    CURLcode Perform() {
        InitCurl(false);
        SetOpt(CURLOPT_URL, url.c_str());
        SetOpt(CURLOPT_TIMEOUT, 20L);
        return curl_easy_perform(curl);
    }
};

using Lines = std::vector<std::string>;

class HeadersAndBody : public TransferTest {};

TEST_F(HeadersAndBody, StatusFieldAndClosingLineAreThreeElementsWithTheirLineEnds) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(Get(Url(server)).headers,
              (Lines{"HTTP/1.1 200 OK\r\n", "Content-Length: 0\r\n", "\r\n"}));
}

TEST_F(HeadersAndBody, BodyInSeveralChunksIsTheirConcatenationWithZeroBytes) {
    const std::string zero(1, '\0');
    const ScriptedServer server(
        Script{ReadRequest(), Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"),
               Send("3\r\na" + zero + "b\r\n"), Send("1\r\n" + zero + "\r\n"),
               Send("2\r\n\r\n\r\n0\r\n\r\n")});
    EXPECT_EQ(Get(Url(server)).body, "a" + zero + "b" + zero + "\r\n");
}

TEST_F(HeadersAndBody, LargeBodyArrivesByteForByte) {
    const std::string body = PositionedBytes(3 * 1024 * 1024 + 1);
    const ScriptedServer server(OkReply(body));
    EXPECT_TRUE(Get(Url(server)).body == body);
}

TEST_F(HeadersAndBody, InterimBlocksStandBeforeTheFinalOne) {
    const ScriptedServer server(
        "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Early Hints\r\nA: b\r\n\r\n"
        "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK");
    const CurlUtils::HttpGet get = Get(Url(server));
    EXPECT_EQ(get.headers,
              (Lines{"HTTP/1.1 100 Continue\r\n", "\r\n", "HTTP/1.1 103 Early Hints\r\n",
                     "A: b\r\n", "\r\n", "HTTP/1.1 200 OK\r\n", "Content-Length: 2\r\n", "\r\n"}));
    EXPECT_EQ(get.body, "OK");
}

TEST_F(HeadersAndBody, TrailersStandBehindTheHeaderBlock) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                "2\r\nOK\r\n0\r\nX-Sum: 7\r\n\r\n");
    const CurlUtils::HttpGet get = Get(Url(server));
    EXPECT_EQ(get.headers, (Lines{"HTTP/1.1 200 OK\r\n", "Transfer-Encoding: chunked\r\n", "\r\n",
                                  "X-Sum: 7\r\n"}));
    EXPECT_EQ(get.body, "OK");
}

TEST_F(HeadersAndBody, HeaderLinesAreNeitherTrimmedNorDecoded) {
    const ScriptedServer server(
        "HTTP/1.1 200 OK\nA:  \xC3\xA4 %41 \t \r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(Get(Url(server)).headers, (Lines{"HTTP/1.1 200 OK\n", "A:  \xC3\xA4 %41 \t \r\n",
                                               "Content-Length: 0\r\n", "\r\n"}));
}

class Base : public TransferTest {};

TEST_F(Base, HoldsNothingWhenMade) {
    std::string url = "http://localhost/";
    Exchange exchange(url);
    url.clear();
    EXPECT_EQ(exchange.url, "http://localhost/");
    EXPECT_EQ(exchange.self, &exchange);
    EXPECT_EQ(exchange.curl, nullptr);
    EXPECT_EQ(exchange.multi, nullptr);
    EXPECT_TRUE(exchange.headers.empty());
    EXPECT_TRUE(exchange.body.empty());
    EXPECT_EQ(interposer.Calls(), Lines{});
}

TEST_F(Base, InitCurlMakesTheEasyHandleAndInstallsTheCallbacks) {
    Exchange exchange("");
    exchange.InitCurl(false);
    EXPECT_NE(exchange.curl, nullptr);
    EXPECT_EQ(exchange.multi, nullptr);
    EXPECT_EQ(interposer.Calls(),
              (Lines{"curl_easy_init", "curl_easy_setopt 20011", "curl_easy_setopt 20079",
                     "curl_easy_setopt 10029", "curl_easy_setopt 10001"}));
}

TEST_F(Base, InitCurlMakesTheMultiHandleBeforeTheCallbacks) {
    Exchange exchange("");
    exchange.InitCurl(true);
    EXPECT_NE(exchange.curl, nullptr);
    EXPECT_NE(exchange.multi, nullptr);
    EXPECT_EQ(interposer.Calls(), (Lines{"curl_easy_init", "curl_multi_init",
                                         "curl_easy_setopt 20011", "curl_easy_setopt 20079",
                                         "curl_easy_setopt 10029", "curl_easy_setopt 10001"}));
}

TEST_F(Base, FailedEasyInitReleasesNothing) {
    interposer.Fail("curl_easy_init");
    ExpectThrows<std::runtime_error>([] { Exchange("").InitCurl(true); },
                                     "curl_easy_init() failed");
    EXPECT_EQ(interposer.Calls(), Lines{"curl_easy_init"});
}

TEST_F(Base, FailedMultiInitReleasesTheEasyHandle) {
    interposer.Fail("curl_multi_init");
    ExpectThrows<std::runtime_error>([] { Exchange("").InitCurl(true); },
                                     "curl_multi_init() failed");
    EXPECT_EQ(interposer.Calls(),
              (Lines{"curl_easy_init", "curl_multi_init", "curl_easy_cleanup"}));
}

TEST_F(Base, CleanupTwiceReleasesTheMultiAndThenTheEasyHandleOnce) {
    {
        Exchange exchange("");
        exchange.InitCurl(true);
        exchange.body = "kept";
        exchange.cleanup();
        EXPECT_EQ(exchange.curl, nullptr);
        EXPECT_EQ(exchange.multi, nullptr);
        exchange.cleanup();
        EXPECT_EQ(exchange.body, "kept");
    }
    EXPECT_EQ(Releases(interposer), (Lines{"curl_multi_cleanup", "curl_easy_cleanup"}));
}

TEST_F(Base, CallbacksStoreSizeTimesCountBytes) {
    Exchange exchange("");
    char bytes[] = {'a', '\0', 'c', 'd', 'e', 'f'};
    EXPECT_EQ(exchange.WriteData(bytes, 2, 3), 6U);
    EXPECT_EQ(exchange.WriteData(bytes, 1, 2), 2U);
    EXPECT_EQ(exchange.body, std::string("a\0cdefa\0", 8));
    EXPECT_EQ(exchange.WriteHeader(bytes, 3, 2), 6U);
    EXPECT_EQ(exchange.WriteHeader(bytes, 1, 1), 1U);
    EXPECT_EQ(exchange.headers, (Lines{std::string("a\0cdef", 6), "a"}));
}

TEST_F(Base, CountOfZeroAddsAnEmptyHeaderAndNothingToTheBody) {
    Exchange exchange("");
    char bytes[] = "abc";
    EXPECT_EQ(exchange.WriteData(bytes, 0, 3), 0U);
    EXPECT_EQ(exchange.WriteData(bytes, 1, 0), 0U);
    EXPECT_EQ(exchange.body, "");
    EXPECT_EQ(exchange.WriteHeader(bytes, 0, 3), 0U);
    EXPECT_EQ(exchange.WriteHeader(bytes, 1, 0), 0U);
    EXPECT_EQ(exchange.headers, (Lines{"", ""}));
}

TEST_F(Base, SizeThatCannotBeStoredReturnsZeroAndKeepsWhatWasStored) {
    Exchange exchange("");
    exchange.body = "before";
    exchange.headers = {"before"};
    char bytes[] = "abc";
    EXPECT_EQ(exchange.WriteData(bytes, SIZE_MAX, 1), 0U);
    EXPECT_EQ(exchange.WriteHeader(bytes, SIZE_MAX, 1), 0U);
    EXPECT_EQ(exchange.body, "before");
    EXPECT_EQ(exchange.headers, Lines{"before"});
}

TEST_F(Base, StaticCallbacksReachTheObjectThroughItsSelf) {
    Exchange first("");
    Exchange second("");
    char bytes[] = "abc";
    EXPECT_EQ(Exchange::WriteDataFunc(bytes, 1, 3, &second.self), 3U);
    EXPECT_EQ(Exchange::WriteHeaderFunc(bytes, 1, 2, &second.self), 2U);
    EXPECT_EQ(second.body, "abc");
    EXPECT_EQ(second.headers, Lines{"ab"});
    EXPECT_TRUE(first.body.empty() && first.headers.empty());
}

TEST_F(Base, LibcurlHandsTheAddressOfSelfBack) {
    const ScriptedServer server(OkReply("reply"));
    Exchange exchange(Url(server));
    Exchange target("");
    // Whoever `self` names at the time of the callback gets the bytes.
    exchange.self = &target;
    EXPECT_EQ(exchange.Perform(), CURLE_OK);
    EXPECT_EQ(target.body, "reply");
    EXPECT_EQ(target.headers.size(), 3U);
    EXPECT_TRUE(exchange.body.empty() && exchange.headers.empty());
}

class RefusedMemory : public TransferTest {};

TEST_F(RefusedMemory, BodyThatCannotBeStoredIsAWriteErrorAndItsBeginningStays) {
    const std::string body = PositionedBytes(300000);
    const ScriptedServer server(OkReply(body));
    Exchange exchange(Url(server));
    const AllocationLimit limit(100000);
    EXPECT_EQ(exchange.Perform(), CURLE_WRITE_ERROR);
    EXPECT_EQ(exchange.headers.size(), 3U);
    ASSERT_GT(exchange.body.size(), 0U);
    ASSERT_LT(exchange.body.size(), 100000U);
    EXPECT_EQ(body.compare(0, exchange.body.size(), exchange.body), 0);
}

TEST_F(RefusedMemory, HeaderThatCannotBeStoredIsAWriteErrorAndTheOnesBeforeStay) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\nLong: " + std::string(60000, 'x') +
                                "\r\nContent-Length: 0\r\n\r\n");
    Exchange exchange(Url(server));
    const AllocationLimit limit(50000);
    EXPECT_EQ(exchange.Perform(), CURLE_WRITE_ERROR);
    EXPECT_EQ(exchange.headers, Lines{"HTTP/1.1 200 OK\r\n"});
}

TEST_F(RefusedMemory, GetEndsWithLibcurlsWriteError) {
    const ScriptedServer server(OkReply(std::string(300000, 'x')));
    const std::string url = Url(server);
    const AllocationLimit limit(100000);
    ExpectEasyError([&] { Get(url); }, "curl_easy_perform", CURLE_WRITE_ERROR);
}

TEST_F(RefusedMemory, UploadEndsWithLibcurlsWriteError) {
    const ScriptedServer server(OkReply(std::string(300000, 'x')));
    const std::string url = Url(server);
    const AllocationLimit limit(100000);
    ExpectEasyError([&] { Post2(url, "abc"); }, "curl_easy_perform", CURLE_WRITE_ERROR);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
