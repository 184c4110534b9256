#include "CurlUtils/TransferTest.h"
#include "support/GlobalLocale.h"

#include <iomanip>
#include <memory>
#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::HttpGet;

class HttpGetLog : public ServedTest {
protected:
    HttpGetLog() : ServedTest(Reply(OkReply("hello"))) {}

    std::string RequestLine() const {
        return "HTTP GET " + Url() + "\n";
    }
    void GetWith(CapturingLogger& chosen) const {
        HttpGet(Url(), chosen, false, 20);
    }
};

TEST_F(HttpGetLog, WithoutLevelEightHasOnlyTheRequestLine) {
    for (const std::set<int>& levels : {std::set<int>{}, {7}, {0, 1, 2, 3, 4, 5, 6, 7, 9, 10}}) {
        CapturingLogger chosen(levels);
        GetWith(chosen);
        EXPECT_EQ(chosen.Text(), RequestLine());
    }
}

TEST_F(HttpGetLog, AtLevelEightHasTheReplyToo) {
    for (const std::set<int>& levels : {std::set<int>{8}, {7, 8}}) {
        CapturingLogger chosen(levels);
        GetWith(chosen);
        EXPECT_EQ(chosen.Text(), RequestLine() + okDump);
    }
}

TEST_F(HttpGetLog, EmptyBodyHasNoExtraBlankLine) {
    const ScriptedServer empty(OkReply(""));
    const std::string url = TransferTest::Url(empty);
    Get(url);
    EXPECT_EQ(logger.Text(), "HTTP GET " + url +
                                 "\n\nReturned headers:\n\n\nHTTP/1.1 200 OK\r\n"
                                 "\nContent-Length: 0\r\n\n\r\n\n\nReturned data (0):\n\n\n");
}

TEST_F(HttpGetLog, BodyIsWrittenWholeWithItsZeroBytes) {
    const std::string body = PositionedBytes(20000);
    const ScriptedServer large(OkReply(body));
    Get(TransferTest::Url(large));
    const std::string end = "\nReturned data (20000):\n\n" + body + "\n\n";
    const std::string text = logger.Text();
    ASSERT_GT(text.size(), end.size());
    EXPECT_TRUE(text.substr(text.size() - end.size()) == end);
}

TEST_F(HttpGetLog, FlagsAndLocaleOfTheHostsStreamLeaveTheDigits) {
    const std::string body(1234, 'x');
    const ScriptedServer large(OkReply(body));
    CapturingLogger chosen({8});
    chosen.Stream().imbue(std::locale(std::locale::classic(), new DigitGrouping));
    chosen.Stream() << std::hex << std::showbase << std::showpos << std::uppercase;
    const HttpGet get(TransferTest::Url(large), chosen, false, 20);
    const std::string end = "\nReturned data (1234):\n\n" + body + "\n\n";
    const std::string text = chosen.Text();
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(HttpGetLog, WidthLeftOnTheHostsStreamLeavesTheDigits) {
    CapturingLogger chosen({8});
    chosen.Stream() << std::setw(20) << std::setfill('0');
    GetWith(chosen);
    // The width is used up by the first text.
    EXPECT_EQ(chosen.Text(), "00000000000" + RequestLine() + okDump);
}

TEST_F(HttpGetLog, MayBeWrittenWhileTheHostHoldsTheLock) {
    const MirrinFramework::Logger::Locked locked(logger);
    GetWith(logger);
    EXPECT_EQ(logger.Text(), RequestLine() + okDump);
}

TEST_F(HttpGetLog, LoggerIsNotNeededAfterConstruction) {
    auto shortLived = std::make_unique<CapturingLogger>(std::set<int>{7, 8});
    HttpGet get(Url(), *shortLived, false, 20);
    shortLived.reset();
    std::ostringstream out;
    get.DebugOut(out);
    get.Close();
    EXPECT_EQ(get.body, "hello");
}

class DebugOut : public TransferTest {
protected:
    static std::string Text(const HttpGet& get) {
        std::ostringstream out;
        get.DebugOut(out);
        return out.str();
    }
};

TEST_F(DebugOut, TwoHeaderLinesAndABodyOfFiveBytes) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\n\r\nhello");
    EXPECT_EQ(Text(Get(Url(server))), "2 Headers:\n"
                                      "\n"
                                      "1) HTTP/1.1 200 OK\r\n\n"
                                      "2) \r\n\n"
                                      "\n"
                                      "5 Body:\n"
                                      "\n"
                                      "hello\n");
}

TEST_F(DebugOut, EmptyBodyEndsTheTextWithItsCount) {
    const ScriptedServer server(OkReply(""));
    EXPECT_EQ(Text(Get(Url(server))), "3 Headers:\n\n1) HTTP/1.1 200 OK\r\n\n"
                                      "2) Content-Length: 0\r\n\n3) \r\n\n\n0 Body:\n");
}

TEST_F(DebugOut, WithoutHeaderLinesHasNoBlankLineForThem) {
    const ScriptedServer server(OkReply("hello"));
    HttpGet get = Get(Url(server));
    get.headers.clear();
    EXPECT_EQ(Text(get), "0 Headers:\n\n5 Body:\n\nhello\n");
}

TEST_F(DebugOut, ZeroBytesAreWrittenAsTheyAre) {
    const std::string body("a\0b", 3);
    const ScriptedServer server(OkReply(body));
    const std::string text = Text(Get(Url(server)));
    EXPECT_EQ(text.substr(text.size() - 5), "\n" + body + "\n");
}

TEST_F(DebugOut, FlagsAndLocaleOfTheStreamLeaveTheDigits) {
    const std::string body(1234, 'x');
    const ScriptedServer server(OkReply(body));
    HttpGet get = Get(Url(server));
    get.headers.assign(11, "h\r\n");
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new DigitGrouping));
    out << std::hex << std::showbase << std::showpos;
    get.DebugOut(out);
    std::string expected = "11 Headers:\n\n";
    for (int number = 1; number <= 11; ++number) {
        expected += std::to_string(number) + ") h\r\n\n";
    }
    EXPECT_EQ(out.str(), expected + "\n1234 Body:\n\n" + body + "\n");
}

TEST_F(DebugOut, LeavesTheLoggerAlone) {
    const ScriptedServer server(OkReply(""));
    const HttpGet get = Get(Url(server));
    const std::string logged = logger.Text();
    Text(get);
    EXPECT_EQ(logger.Text(), logged);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
