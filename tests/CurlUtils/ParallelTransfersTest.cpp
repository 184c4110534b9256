#include "CurlUtils/TransferTest.h"
#include "support/Form.h"
#include "support/Requests.h"

#include <algorithm>
#include <functional>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Lines = std::vector<std::string>;

/// Without the interposer, so that nothing orders the threads but the transfers themselves.
class ParallelTransfers : public CleanTest {
protected:
    static constexpr int threadCount = 8;
    static constexpr int rounds = 4;

    /// Runs each thread's rounds; `transfer` gets a number that no other one gets.
    static void Run(const std::function<void(int)>& transfer) {
        std::vector<std::thread> threads;
        threads.reserve(threadCount);
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([&, thread] {
                for (int round = 0; round < rounds; ++round) {
                    transfer(thread * rounds + round);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    static std::string Path(int number) {
        return "/" + std::to_string(1000 + number);
    }
    static std::string Content(int number) {
        return PositionedBytes(static_cast<std::size_t>(number) * 1000) + std::to_string(number);
    }

    /// Expects one upload of each number's content.
    static void ExpectUploads(const ScriptedServer& server) {
        Lines requests = server.Requests();
        ASSERT_EQ(requests.size(), static_cast<std::size_t>(threadCount * rounds));
        for (const std::string& request : requests) {
            const int number = std::stoi(request.substr(6)) - 1000;
            EXPECT_TRUE(FormParts(request).at(0).body == Content(number) + '\0') << number;
        }
        ExpectDistinct(requests);
    }

    static void ExpectDistinct(Lines requests) {
        std::sort(requests.begin(), requests.end());
        EXPECT_EQ(std::adjacent_find(requests.begin(), requests.end()), requests.end());
    }
};

TEST_F(ParallelTransfers, OfHttpGetEachGetTheirReplyAndLogInWholeBlocks) {
    const ScriptedServer server(OkReply("reply"));
    CapturingLogger shared({8});
    Run([&](int number) {
        const CurlUtils::HttpGet get("http://" + server.Address() + Path(number), shared, false,
                                     20);
        EXPECT_EQ(get.body, "reply");
        EXPECT_EQ(get.headers.size(), 3U);
    });
    Lines requests = server.Requests();
    std::sort(requests.begin(), requests.end());
    Lines expected;
    std::string text = shared.Text();
    const auto remove = [&](const std::string& block) {
        const std::size_t at = text.find(block);
        ASSERT_NE(at, std::string::npos) << block;
        text.erase(at, block.size());
    };
    for (int number = 0; number < threadCount * rounds; ++number) {
        expected.push_back(GetRequest(server.Address(), Path(number)));
        remove("\nReturned headers:\n\n\nHTTP/1.1 200 OK\r\n\nContent-Length: 5\r\n\n\r\n\n"
               "\nReturned data (5):\n\nreply\n\n");
    }
    for (int number = 0; number < threadCount * rounds; ++number) {
        remove("HTTP GET http://" + server.Address() + Path(number) + "\n");
    }
    EXPECT_EQ(requests, expected);
    EXPECT_EQ(text, "");
}

TEST_F(ParallelTransfers, OfPostFile2EachSendTheirContent) {
    const ScriptedServer server(OkReply("reply"));
    CapturingLogger shared({7, 8});
    Run([&](int number) {
        const CurlUtils::PostFile2 post("http://" + server.Address() + Path(number), "name",
                                        Content(number), shared, false, false, 20);
        EXPECT_EQ(post.body, "reply");
    });
    ExpectUploads(server);
}

TEST_F(ParallelTransfers, OfPostFileEachSendTheirContent) {
    const ScriptedServer server(OkReply("reply"));
    Run([&](int number) {
        const CurlUtils::PostFile post("http://" + server.Address() + Path(number), "name",
                                       Content(number), false, false, 20);
        EXPECT_EQ(post.body, "reply");
    });
    ExpectUploads(server);
}

TEST_F(ParallelTransfers, OfAllKindsAndWithFailuresDoNotDisturbOneAnother) {
    const ScriptedServer good(OkReply("reply"));
    const ScriptedServer bad(Script{ReadRequest()});
    CapturingLogger shared({7, 8});
    Run([&](int number) {
        const std::string url = "http://" + good.Address() + Path(number);
        EXPECT_EQ(CurlUtils::HttpGet(url, shared, false, 20).body, "reply");
        ExpectEasyError(
            [&] { CurlUtils::HttpGet("http://" + bad.Address() + "/", shared, false, 20); },
            "curl_easy_perform", CURLE_GOT_NOTHING);
        EXPECT_EQ(CurlUtils::PostFile(url, "name", "abc", false, false, 20).body, "reply");
        EXPECT_EQ(CurlUtils::PostFile2(url, "name", "abc", shared, false, false, 20).body, "reply");
    });
    ExpectDistinct(good.Requests());
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
