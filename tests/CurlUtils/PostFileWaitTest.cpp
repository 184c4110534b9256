#include "CurlUtils/TransferTest.h"
#include "support/Alarms.h"
#include "support/LowDescriptorsTaken.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::PostFile;
using Lines = std::vector<std::string>;

using FdSet = PostFile::MyFdSet;
static_assert(sizeof(FdSet) == 128 && std::is_base_of<fd_set, FdSet>::value, "");
static_assert(sizeof(PostFile::MyTimeval) == sizeof(timeval), "");

TEST(MyFdSet, IsClearedWhenMadeInUsedMemory) {
    alignas(FdSet) unsigned char memory[sizeof(FdSet)];
    std::memset(memory, 0xFF, sizeof memory);
    const auto* const made = new (memory) FdSet;
    EXPECT_FALSE(made->HasBits());
    for (const unsigned char byte : memory) {
        EXPECT_EQ(byte, 0);
    }
}

TEST(MyFdSet, HasBitsSeesEachOfThe1024) {
    for (int bit = 0; bit < 1024; ++bit) {
        FdSet set;
        // Bit n is bit n mod 32 of word n / 32.
        std::uint32_t words[32] = {};
        words[bit / 32] = std::uint32_t(1) << bit % 32;
        std::memcpy(static_cast<fd_set*>(&set), words, sizeof words);
        EXPECT_TRUE(set.HasBits()) << bit;
        EXPECT_TRUE(FD_ISSET(bit, &set)) << bit;
        FD_CLR(bit, &set);
        EXPECT_FALSE(set.HasBits()) << bit;
    }
}

void ExpectTime(const timeval& time, long seconds, long microseconds) {
    EXPECT_EQ(time.tv_sec, seconds);
    EXPECT_EQ(time.tv_usec, microseconds);
}

TEST(MyTimeval, IsOneMicrosecondWhenMade) {
    ExpectTime(PostFile::MyTimeval(), 0, 1);
}

TEST(MyTimeval, ResetTakesMilliseconds) {
    struct Case {
        long milliseconds, seconds, microseconds;
    };
    for (const Case& c : {Case{0, 0, 0}, Case{1, 0, 1000}, Case{999, 0, 999000}, Case{1000, 1, 0},
                          Case{1500, 1, 500000}, Case{59999, 59, 999000},
                          Case{LONG_MAX, LONG_MAX / 1000, LONG_MAX % 1000 * 1000}}) {
        PostFile::MyTimeval time;
        time.Reset(c.milliseconds);
        ExpectTime(time, c.seconds, c.microseconds);
    }
}

TEST(MyTimeval, ResetToANegativeTimeIsOneMicrosecond) {
    for (const long negative : {-1L, -1500L, LONG_MIN}) {
        PostFile::MyTimeval time;
        time.Reset(77777);
        time.Reset(negative);
        ExpectTime(time, 0, 1);
    }
}

class PostFileWait : public TransferTest {
protected:
    /// Expects every wait of an upload to be that long, when libcurl asks for `milliseconds`.
    void ExpectWaits(long milliseconds, const std::string& time) {
        interposer.SetMultiTimeout(milliseconds);
        // Not to lose the time itself.
        interposer.SkipSelect();
        const ScriptedServer server(OkReply("reply"));
        EXPECT_EQ(Post(Url(server), "abc").body, "reply");
        const Lines waits = interposer.CallsTo("select ");
        EXPECT_FALSE(waits.empty());
        for (const std::string& wait : waits) {
            EXPECT_EQ(wait.substr(wait.find(' ', 7)), " " + time);
        }
    }
};

TEST_F(PostFileWait, LibcurlsMinusOneIsOneMicrosecond) {
    ExpectWaits(-1, "0 1");
}

TEST_F(PostFileWait, LibcurlsZeroIsNoTime) {
    ExpectWaits(0, "0 0");
}

TEST_F(PostFileWait, Libcurls1500AreOneAndAHalfSeconds) {
    ExpectWaits(1500, "1 500000");
}

TEST_F(PostFileWait, EndsWhenTheSocketIsReady) {
    // With ten minutes for each wait, only the sockets can be what ends them.
    interposer.SetMultiTimeout(600000);
    const ScriptedServer server(Script{ReadRequest(), Send("HTTP/1.1 200 OK\r\n\r\n"),
                                       Pause(std::chrono::milliseconds(50)), Send("reply")});
    EXPECT_EQ(Post(Url(server), PositionedBytes(1048576)).body, "reply");
}

TEST_F(PostFileWait, InterruptedBySignalEndsTheUpload) {
    const Alarms alarms(0);
    std::optional<ScriptedServer> server;
    {
        const WithoutAlarms inherited;
        server.emplace(Script{ReadRequest(), Stall()});
    }
    interposer.SetMultiTimeout(60000);
    Alarms::Start(5000);
    ExpectThrows<std::runtime_error>([&] { Post(Url(*server), "abc"); },
                                     "select() failed while performing file transfer");
    EXPECT_EQ(Releases(interposer), (Lines{"curl_formfree", "curl_slist_free_all",
                                           "curl_multi_cleanup", "curl_easy_cleanup"}));
}

TEST_F(PostFileWait, DescriptorsOf1024AndAboveAreNotWaitedFor) {
    const ScriptedServer server(OkReply("reply"));
    const LowDescriptorsTaken taken;
    // So that the time without a descriptor passes quickly.
    interposer.SetMultiTimeout(1);
    EXPECT_EQ(Post(Url(server), "abc").body, "reply");
    const Lines waits = interposer.CallsTo("select ");
    EXPECT_FALSE(waits.empty());
    for (const std::string& wait : waits) {
        EXPECT_EQ(wait, "select 0 0 1000");
    }
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
