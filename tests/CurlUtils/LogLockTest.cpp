#include "CurlUtils/TransferTest.h"

#include <future>
#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using namespace std::chrono_literals;
using MirrinFramework::Logger;

/// Has another thread try for the logger's lock at the end of every line.
class WatchedBuffer : public std::stringbuf {
public:
    Logger* logger = nullptr;
    int held = 0;
    int free = 0;

    /// Waits for the other threads, which must not outlive the logger.
    void Join() {
        attempts.clear();
    }

protected:
    int sync() override {
        attempts.push_back(
            std::async(std::launch::async, [this] { const Logger::Locked locked(*logger); }));
        // A free lock is had at once; one that is held is not, however long this lasts.
        const bool had = attempts.back().wait_for(20ms) == std::future_status::ready;
        ++(had ? free : held);
        return 0;
    }

private:
    std::vector<std::future<void>> attempts;
};

class LogLock : public ServedTest {
protected:
    LogLock() : ServedTest(Reply(OkReply("hello"))) {
        buffer.logger = &watched;
    }

    void ExpectHeld(int lines) {
        buffer.Join();
        EXPECT_EQ(buffer.held, lines);
        EXPECT_EQ(buffer.free, 0);
    }

    WatchedBuffer buffer;
    std::ostream stream{&buffer};
    Logger watched{stream, 8};
};

TEST_F(LogLock, IsHeldForEveryLineOfAGet) {
    const CurlUtils::HttpGet get(Url(), watched, false, 20);
    ExpectHeld(13);
}

TEST_F(LogLock, IsHeldForEveryLineOfAnUpload) {
    const CurlUtils::PostFile2 post(Url(), "name", std::string(5000, 'x'), watched, false, false,
                                    20);
    ExpectHeld(16);
}

TEST_F(LogLock, IsFreeDuringTheExchange) {
    CapturingLogger shared({7});
    std::optional<ScriptedServer> silent(std::in_place, Script{ReadRequest(), Stall()});
    const std::string url = TransferTest::Url(*silent);
    auto transfer = std::async(std::launch::async, [&] {
        EXPECT_THROW(CurlUtils::PostFile2(url, "name", "", shared, false, false, 20),
                     CurlUtils::CurlEasyException);
    });
    silent->WaitForConnections(1);
    EXPECT_EQ(shared.Text(), "HTTP POST " + url + "\n\n");
    // The server answers nothing until it ends.
    EXPECT_EQ(transfer.wait_for(0s), std::future_status::timeout);
    silent.reset();
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
