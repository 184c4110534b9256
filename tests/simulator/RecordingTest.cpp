#include "wire/RecordedSocket.h"

#include <Poco/Exception.h>
#include <Poco/Net/StreamSocket.h>
#include <array>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

void AddReceived(Recording& recording, const std::string& bytes) {
    recording.AddReceived(bytes.data(), bytes.size());
}

void AddSent(Recording& recording, const std::string& bytes) {
    recording.AddSent(bytes.data(), bytes.size());
}

TEST(Recording, CountsAllAndKeepsTheFirstOfEachDirection) {
    Recording recording;
    AddReceived(recording, std::string(Recording::most - 1, 'a'));
    AddReceived(recording, "bcd");
    AddReceived(recording, "e");
    AddSent(recording, "sent");
    EXPECT_EQ(recording.Received().bytes, std::string(Recording::most - 1, 'a') + "b");
    EXPECT_EQ(recording.Received().count, Recording::most + 3);
    EXPECT_FALSE(recording.Received().Whole());
    EXPECT_EQ(recording.ReceivedCount(), Recording::most + 3);
    EXPECT_EQ(recording.Sent().bytes, "sent");
    EXPECT_TRUE(recording.Sent().Whole());
}

TEST(Recording, TakesBackWhatCouldNotBeSent) {
    Recording recording;
    AddSent(recording, "0123456789");
    recording.RemoveSent(4);
    EXPECT_EQ(recording.Sent().bytes, "012345");
    AddSent(recording, "x");
    EXPECT_EQ(recording.Sent().bytes, "012345x");
    EXPECT_EQ(recording.SentCount(), 7U);
}

TEST(Recording, KeepsNothingBehindAGap) {
    Recording recording;
    AddSent(recording, std::string(Recording::most + 5, 'a'));
    recording.RemoveSent(3);
    AddSent(recording, "b");
    EXPECT_EQ(recording.Sent().bytes, std::string(Recording::most, 'a'));
    EXPECT_EQ(recording.SentCount(), Recording::most + 3);
    recording.RemoveSent(5);
    AddSent(recording, "cd");
    EXPECT_EQ(recording.Sent().bytes, std::string(Recording::most - 2, 'a') + "cd");
    EXPECT_TRUE(recording.Sent().Whole());
}

/// A recorded connection and the descriptor of its other end.
class RecordedPair : public ::testing::Test {
protected:
    RecordedPair() {
        std::signal(SIGPIPE, SIG_IGN);
        std::array<int, 2> ends{};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
        other = ends[1];
        recorded = new RecordedSocket(
            ends[0], "peer",
            [this](const std::string& peer, const std::shared_ptr<const Recording>& recording) {
                leftover = peer + ": " + recording->Received().bytes;
            },
            std::chrono::hours(1));
        socket = std::make_unique<Owner>(recorded);
    }

    ~RecordedPair() override {
        close(other);
    }

    void Write(const std::string& bytes) const {
        EXPECT_EQ(write(other, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    /// Gives a socket of its own to the implementation, and counts as its owner.
    class Owner : public Poco::Net::StreamSocket {
    public:
        explicit Owner(Poco::Net::SocketImpl* implementation) : StreamSocket(implementation) {}
    };

    int other = -1;
    RecordedSocket* recorded = nullptr;
    std::unique_ptr<Owner> socket;
    std::string leftover;
};

TEST_F(RecordedPair, RecordsWhatPassesAndNotWhatIsOnlyLookedAt) {
    Write("request");
    std::array<char, 100> buffer{};
    EXPECT_EQ(socket->receiveBytes(buffer.data(), 3, MSG_PEEK), 3);
    EXPECT_EQ(socket->receiveBytes(buffer.data(), 100), 7);
    EXPECT_EQ(socket->sendBytes("reply", 5), 5);
    const auto recording = recorded->TakeRecording();
    EXPECT_EQ(recording->Received().bytes, "request");
    EXPECT_EQ(recording->Sent().bytes, "reply");
    EXPECT_FALSE(recorded->IsUsed());
    recorded->NextExchange();
    EXPECT_TRUE(recorded->IsUsed());
    Write("more");
    socket->receiveBytes(buffer.data(), 100);
    EXPECT_EQ(recording->Received().bytes, "request");
    socket.reset();
    EXPECT_EQ(leftover, "peer: more") << "no exchange took it over";
}

TEST_F(RecordedPair, RecordsOnlyWhatWasReallySent) {
    socket->setBlocking(false);
    const std::string bytes(std::size_t{8} * 1024 * 1024, 'x');
    const int sent = socket->sendBytes(bytes.data(), static_cast<int>(bytes.size()));
    const auto recording = recorded->TakeRecording();
    EXPECT_LT(sent, static_cast<int>(bytes.size()));
    EXPECT_EQ(recording->SentCount(), static_cast<std::uint64_t>(sent));
    close(other);
    EXPECT_THROW(socket->sendBytes("x", 1), Poco::Exception);
    EXPECT_EQ(recording->SentCount(), static_cast<std::uint64_t>(sent));
    socket.reset();
    EXPECT_EQ(leftover, "");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
