#include "CurlUtils/TransferTest.h"
#include "support/GlobalLocale.h"

#include <MirrinFramework/ByteArray.h>

#include <iomanip>
#include <memory>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::PostFile2;
using MirrinFramework::ByteArray;

std::string SplitView(const std::string& bytes) {
    return ByteArray(bytes.data(), bytes.size()).ToStringSplitView() + "\n";
}

class PostFile2Log : public ServedTest {
protected:
    PostFile2Log() : ServedTest(Reply(OkReply("hello"))) {}

    std::string RequestLine() const {
        return "HTTP POST " + Url() + "\n";
    }

    /// What is logged at those levels when that content is uploaded.
    std::string Logged(const std::set<int>& levels, const std::string& content) const {
        CapturingLogger chosen(levels);
        const PostFile2 post(Url(), "content", content, chosen, false, false, 20);
        return chosen.Text();
    }

    /// Likewise at level 7 when the file of that path is uploaded.
    std::string LoggedForFile(const std::string& name, const std::string& path) const {
        CapturingLogger chosen({7});
        const PostFile2 post(Url(), name, path, chosen, true, false, 20);
        return chosen.Text();
    }
};

TEST_F(PostFile2Log, WithoutLevelsSevenAndEightIsEmpty) {
    EXPECT_EQ(Logged({}, "abc"), "");
    EXPECT_EQ(Logged({0, 1, 2, 3, 4, 5, 6, 9, 10}, "abc"), "");
}

TEST_F(PostFile2Log, AtLevelSevenHasTheRequestLineAndTheContentWithoutTheZeroByte) {
    EXPECT_EQ(Logged({7}, "abc"),
              RequestLine() + "00000000  61 62 63                                      abc\n");
}

TEST_F(PostFile2Log, AtLevelEightHasTheReplyOnly) {
    EXPECT_EQ(Logged({8}, "abc"), okDump);
}

TEST_F(PostFile2Log, AtBothLevelsHasAll) {
    EXPECT_EQ(Logged({7, 8}, "abc"), RequestLine() + SplitView("abc") + okDump);
}

TEST_F(PostFile2Log, EmptyContentIsAnEmptyDump) {
    EXPECT_EQ(Logged({7}, ""), RequestLine() + "\n");
}

TEST_F(PostFile2Log, ContentIsDumpedLiterallyWithItsZeroBytes) {
    const std::string content("\\x41\0%\n", 7);
    EXPECT_EQ(Logged({7}, content), RequestLine() + SplitView(content));
}

TEST_F(PostFile2Log, ContentOf4096BytesIsShownWhole) {
    const std::string content = PositionedBytes(4096);
    EXPECT_EQ(Logged({7}, content), RequestLine() + SplitView(content));
}

TEST_F(PostFile2Log, ContentOf4097BytesIsShownAsItsFirst2048AndItsLast2057) {
    const std::string content = PositionedBytes(4097);
    EXPECT_EQ(Logged({7}, content), RequestLine() + SplitView(content.substr(0, 2048)) + "...\n" +
                                        SplitView(content.substr(2040, 2057)));
}

TEST_F(PostFile2Log, TailBeginsOnAMultipleOf15AndHolds2048To2062Bytes) {
    for (std::size_t size = 4098; size < 4098 + 31; ++size) {
        const std::string content = PositionedBytes(size);
        // Of 15 lengths in a row, one puts the tail's beginning on a multiple of 15.
        std::size_t tail = 2048;
        while ((size - tail) % 15 != 0) {
            ++tail;
        }
        ASSERT_LE(tail, 2062U);
        EXPECT_EQ(Logged({7}, content), RequestLine() + SplitView(content.substr(0, 2048)) +
                                            "...\n" + SplitView(content.substr(size - tail)))
            << size;
    }
}

TEST_F(PostFile2Log, LargeContentIsNotShownWhole) {
    const std::string content = PositionedBytes(1048576);
    // 1048576 - 2048 = 1046528 = 15 * 69768 + 8.
    EXPECT_EQ(Logged({7}, content), RequestLine() + SplitView(content.substr(0, 2048)) + "...\n" +
                                        SplitView(content.substr(1046520)));
}

TEST_F(PostFile2Log, NameIsShownForAFile) {
    const std::string path = MakeFile("given", "not shown");
    EXPECT_EQ(LoggedForFile("content", path),
              RequestLine() + "00000000  63 6F 6E 74 65 6E 74                          content\n");
}

TEST_F(PostFile2Log, NameOfOver4096BytesIsCutLikeContent) {
    const std::string name = PositionedBytes(5000);
    EXPECT_EQ(LoggedForFile(name, MakeFile("given", "")),
              RequestLine() + SplitView(name.substr(0, 2048)) + "...\n" +
                  SplitView(name.substr(2940)));
}

TEST_F(PostFile2Log, FailedUploadHasItsRequestButNoReply) {
    interposer.Fail("curl_easy_getinfo", CURLE_BAD_FUNCTION_ARGUMENT);
    CapturingLogger chosen({7, 8});
    EXPECT_THROW(PostFile2(Url(), "content", "abc", chosen, false, false, 20),
                 CurlUtils::CurlEasyException);
    EXPECT_EQ(chosen.Text(), RequestLine() + SplitView("abc"));
}

TEST_F(PostFile2Log, RequestStandsThereBeforeTheFormIsMade) {
    interposer.Fail("curl_formadd", 1);
    CapturingLogger chosen({7, 8});
    EXPECT_THROW(PostFile2(Url(), "content", "abc", chosen, false, false, 20),
                 CurlUtils::CurlFormException);
    EXPECT_EQ(chosen.Text(), RequestLine() + SplitView("abc"));
}

TEST_F(PostFile2Log, FlagsAndLocaleOfTheHostsStreamLeaveTheDigits) {
    const std::string body(1234, 'x');
    const ScriptedServer large(OkReply(body));
    const std::string url = TransferTest::Url(large);
    const std::string content = PositionedBytes(5000);
    CapturingLogger chosen({7, 8});
    chosen.Stream().imbue(std::locale(std::locale::classic(), new DigitGrouping));
    chosen.Stream() << std::hex << std::showbase << std::showpos;
    const PostFile2 post(url, "content", content, chosen, false, false, 20);
    EXPECT_EQ(chosen.Text(),
              "HTTP POST " + url + "\n" + SplitView(content.substr(0, 2048)) + "...\n" +
                  SplitView(content.substr(2940)) +
                  "\nReturned headers:\n\n\nHTTP/1.1 200 OK\r\n\nContent-Length: 1234\r\n\n\r\n\n"
                  "\nReturned data (1234):\n\n" +
                  body + "\n\n");
}

TEST_F(PostFile2Log, WidthLeftOnTheHostsStreamLeavesTheDigits) {
    CapturingLogger chosen({8});
    chosen.Stream() << std::setw(20) << std::setfill('0');
    const PostFile2 post(Url(), "content", "abc", chosen, false, false, 20);
    // The width is used up by the first text.
    EXPECT_EQ(chosen.Text(), "\n000" + okDump.substr(1));
}

TEST_F(PostFile2Log, MayBeWrittenWhileTheHostHoldsTheLock) {
    const MirrinFramework::Logger::Locked locked(logger);
    Post2(Url(), "abc");
    EXPECT_EQ(logger.Text(), RequestLine() + SplitView("abc") + okDump);
}

TEST_F(PostFile2Log, RequestLineAndDumpStayTogetherAmongThreads) {
    constexpr std::size_t uploads = 25;
    CapturingLogger shared({7});
    std::vector<std::thread> threads;
    for (char letter = 'a'; letter < 'e'; ++letter) {
        threads.emplace_back([&, letter] {
            for (std::size_t i = 0; i < uploads; ++i) {
                const PostFile2 post(Url() + letter, "name", std::string(40, letter), shared, false,
                                     false, 20);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::string left = shared.Text();
    for (char letter = 'a'; letter < 'e'; ++letter) {
        const std::string block =
            "HTTP POST " + Url() + letter + "\n" + SplitView(std::string(40, letter));
        std::size_t found = 0;
        for (std::size_t at = left.find(block); at != std::string::npos; at = left.find(block)) {
            left.erase(at, block.size());
            ++found;
        }
        EXPECT_EQ(found, uploads) << letter;
    }
    EXPECT_EQ(left, "");
}

TEST_F(PostFile2Log, LoggerIsNotNeededAfterConstruction) {
    auto shortLived = std::make_unique<CapturingLogger>(std::set<int>{7, 8});
    const PostFile2 post(Url(), "content", "abc", *shortLived, false, false, 20);
    shortLived.reset();
    EXPECT_EQ(post.body, "hello");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
