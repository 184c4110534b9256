// The client's polls, and what the server then holds.

#include "ClientTest.h"

#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

using None = std::vector<std::string>;

class Polling : public ClientTest {
protected:
    void Queue(const std::string& id, const std::string& tag, const std::string& command,
               bool isFile = false) const {
        Json::Value body;
        body["id"] = id;
        body["tag"] = tag;
        body["command"] = command;
        body["isFile"] = isFile;
        ASSERT_EQ(StatusLine(Post("/sim/v1/commands", JsonText(body))), "HTTP/1.1 200 OK");
    }

    std::vector<std::string> ids = {"P1", "P2"};
    std::vector<Client::RemoteCommand> commands;
    Client::GPSInfo gps;
    Client::ShutdownInfo shutdown;
};

TEST_F(Polling, CommandsComeWholeAndInOrderAndAreAnswered) {
    Queue("P1", "it's", "say \"hi\" \\ \n\t\x01 \xc3\xa9");
    Queue("P1", "two \"kinds\"", "", true);
    Queue("P2", "", "third");
    client.Poll(ids, &commands, nullptr, nullptr, 0, 2);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].id, "P1");
    EXPECT_EQ(commands[0].tag, "it's");
    EXPECT_EQ(commands[0].command, "say \"hi\" \\ \n\t\x01 \xc3\xa9");
    EXPECT_FALSE(commands[0].isFile);
    EXPECT_EQ(commands[1].tag, "two \"kinds\"");
    EXPECT_EQ(commands[1].command, "");
    EXPECT_TRUE(commands[1].isFile);
    client.Poll(ids, &commands, nullptr, nullptr, 0, 1);
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_EQ(commands[0].id, "P2");
    client.RespondToCommand("P1", "it's", "half", false, true);
    client.RespondToCommand("P1", "two \"kinds\"", "no", true, false);
    client.RespondToCommand("P2", "", "yes", true, true);
    const auto first = Items(Kept("P1").commands);
    EXPECT_EQ(first[0].state, Command::State::Delivered);
    EXPECT_EQ(first[0].succeeded, std::nullopt);
    EXPECT_EQ(first[1].state, Command::State::Answered);
    EXPECT_EQ(first[1].succeeded, false);
    EXPECT_EQ(Items(Kept("P2").commands)[0].succeeded, true);
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Polling, APollThatIsHeldBringsACommandOfThatMoment) {
    std::thread poller([&] { client.Poll(ids, &commands, nullptr, nullptr, 60000, 1); });
    AwaitHeldPolls(server.Port(), 1);
    Queue("P2", "t", "now");
    poller.join();
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_EQ(commands[0].command, "now");
    EXPECT_EQ(Kept("P1").heldPolls + Kept("P2").heldPolls, 0U);
}

TEST_F(Polling, AnHoursPollEndsWhenTheClockIsSteppedByAnHour) {
    std::string message;
    std::thread poller([&] {
        try {
            client.Poll(ids, &commands, nullptr, nullptr, 3600000, 1);
        } catch (const Client::ServerTimeoutOnRequest& timeout) {
            message = timeout.what();
        }
    });
    AwaitHeldPolls(server.Port(), 1);
    Post("/sim/v1/clock", R"({"stepSeconds":3600})");
    poller.join();
    EXPECT_EQ(message, "Server returned timeout on Poll operation");
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Polling, ThePositionComesWithItsErrorAndEachFixOnce) {
    Post("/sim/v1/clock", R"({"speed":0})");
    Post("/sim/v1/vehicle", R"({"latitude":-10.5,"longitude":179.25,"speedMetresPerSecond":0})");
    client.Poll(ids, nullptr, &gps, nullptr, 0, 0);
    EXPECT_TRUE(gps.received);
    EXPECT_FALSE(gps.hasError);
    EXPECT_NEAR(gps.latitude, -10.5, 1e-9);
    EXPECT_NEAR(gps.longitude, 179.25, 1e-9);
    EXPECT_NEAR(gps.timeFix, world.clock.UnixSeconds(world.clock.Seconds()), 1e-3);
    EXPECT_THROW(client.Poll(ids, nullptr, &gps, nullptr, 0, 0), Client::ServerTimeoutOnRequest)
        << "there is no newer fix while the clock stands still";
    Post("/sim/v1/vehicle", R"({"error":"no satellites"})");
    client.Poll(ids, nullptr, &gps, nullptr, 0, 0);
    EXPECT_TRUE(gps.hasError);
    EXPECT_EQ(gps.errorText, "no satellites");
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Polling, AShutdownIsPostponedAndSettled) {
    Post("/sim/v1/clock", R"({"speed":0})");
    Post("/sim/v1/shutdown", R"({"id":"P1","inSeconds":10})");
    EXPECT_THROW(client.Poll(ids, nullptr, nullptr, &shutdown, 0, 0),
                 Client::ServerTimeoutOnRequest);
    client.DelayShutdown("P1", 5);
    Post("/sim/v1/clock", R"({"stepSeconds":14.5})");
    EXPECT_THROW(client.Poll(ids, nullptr, nullptr, &shutdown, 0, 0),
                 Client::ServerTimeoutOnRequest);
    Post("/sim/v1/clock", R"({"stepSeconds":0.5})");
    client.Poll(ids, nullptr, nullptr, &shutdown, 0, 0);
    EXPECT_TRUE(shutdown.requested);
    EXPECT_TRUE(Kept("P1").shutdownTold);
    client.DelayShutdown("P1", -100);
    EXPECT_FALSE(Kept("P1").shutdownTold);
    client.TurnPayloadOff("P1");
    EXPECT_FALSE(Kept("P1").shutdownAt.has_value());
    EXPECT_EQ(Flags(), None{});
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
