#include "wire/WaitingRoom.h"
#include "support/Wire.h"

#include <Poco/Net/ServerSocket.h>
#include <array>
#include <unistd.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class WaitingRoomTest : public ::testing::Test {
protected:
    WaitingRoomTest() {
        listening.setBlocking(false);
    }

    std::uint16_t Port() const {
        return listening.address().port();
    }

    WaitingRoom Room(std::size_t most, std::chrono::milliseconds longest = std::chrono::hours(1)) {
        return WaitingRoom(listening.impl()->sockfd(), most, longest, [this] { return busy; });
    }

    /// What the next connection has sent, when there is one.
    static std::string Heard(WaitingRoom& room) {
        while (!room.Await(std::chrono::hours(1))) {
        }
        const int descriptor = room.Take();
        std::array<char, 100> bytes{};
        const ssize_t count = read(descriptor, bytes.data(), bytes.size());
        close(descriptor);
        return std::string(bytes.data(), static_cast<std::size_t>(count));
    }

    Poco::Net::ServerSocket listening{Poco::Net::SocketAddress("127.0.0.1", 0)};
    bool busy = false;
};

TEST_F(WaitingRoomTest, GivesThoseThatHaveSentSomethingAndNoOthers) {
    WaitingRoom room = Room(10);
    Connection silent(Port());
    Connection first(Port());
    Connection gone(Port());
    gone.Close();
    first.Send("first");
    EXPECT_EQ(Heard(room), "first");
    silent.Send("not silent any more");
    EXPECT_EQ(Heard(room), "not silent any more");
    EXPECT_FALSE(room.Await(std::chrono::milliseconds(0)));
    EXPECT_EQ(room.Take(), -1);
}

TEST_F(WaitingRoomTest, TheOneThatHasWaitedLongestMakesRoom) {
    WaitingRoom room = Room(2);
    Connection first(Port());
    Connection second(Port());
    Connection third(Port());
    EXPECT_FALSE(room.Await(std::chrono::hours(1)));
    EXPECT_EQ(first.ReadAll(), "") << "it is hung up on";
    second.Send("second");
    EXPECT_EQ(Heard(room), "second");
    third.Send("third");
    EXPECT_EQ(Heard(room), "third");
}

TEST_F(WaitingRoomTest, NoneWaitsForEver) {
    WaitingRoom room = Room(2, std::chrono::milliseconds(50));
    Connection silent(Port());
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(room.Await(std::chrono::milliseconds(60)));
    }
    EXPECT_EQ(silent.ReadAll(), "");
}

TEST_F(WaitingRoomTest, WhoeverComesWhileAllAreBusyIsToldSo) {
    WaitingRoom room = Room(2);
    busy = true;
    Connection client(Port());
    EXPECT_FALSE(room.Await(std::chrono::hours(1)));
    client.Send(GetText("/xp?op=off&id=P1"));
    EXPECT_FALSE(room.Await(std::chrono::hours(1)));
    EXPECT_EQ(client.ReadAll(),
              "HTTP/1.1 503 Service Unavailable\r\nContent-Type: text/plain\r\n"
              "Content-Length: 34\r\nConnection: close\r\n\r\nThe server has too much to do now\n");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
