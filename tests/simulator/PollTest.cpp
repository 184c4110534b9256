#include "operations/Poll.h"
#include "support/Wire.h"

#include <memory>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

const char timeoutBody[] = "{\"timeout\":true}\n";

class Poll : public ServerTest {
protected:
    std::string PollBody(const std::string& parameters) const {
        return BodyOf(Get("/xp?op=poll" + parameters));
    }
};

TEST_F(Poll, BringsCommandsAsTheClientDecodesThem) {
    Post("/sim/v1/commands", R"({"id":"p1","tag":"t17","command":"reboot now"})");
    Post("/sim/v1/commands", R"({"id":"p1","tag":"it's","command":"'quoted' \"text\""})");
    Post("/sim/v1/commands", R"({"id":"p2","tag":"","command":"/var/log/a.txt","isFile":true})");
    Post("/sim/v1/commands", R"({"id":"p2","tag":"u","command":"","isFile":false})");
    EXPECT_EQ(Get("/xp?op=poll&id=p1&format=2&timeout=0"),
              ReplyText("200 OK", "application/json",
                        "{\"commands\":[{\"command\":\"'t17'reboot now\",\"id\":\"p1\"}]}\n"));
    EXPECT_EQ(PollBody("&id=p2&id=p1&format=2&maxcommands=2&timeout=0"),
              "{\"commands\":[{\"command\":\"file:''/var/log/a.txt\",\"id\":\"p2\"},"
              "{\"command\":\"'u'\",\"id\":\"p2\"}]}\n");
    EXPECT_EQ(PollBody("&id=p2&id=p1&format=2&maxcommands=2&timeout=0"),
              "{\"commands\":[{\"command\":"
              "\"\\\"it's\\\"'quoted' \\\"text\\\"\",\"id\":\"p1\"}]}\n");
}

TEST_F(Poll, SaysTimeoutWhenItsTimeIsUp) {
    EXPECT_EQ(Get("/xp?op=poll&id=p1&format=2&timeout=20"),
              ReplyText("200 OK", "application/json", timeoutBody));
    EXPECT_EQ(PollBody("&format=2&timeout=0"), timeoutBody);
    EXPECT_EQ(PollBody("&id=p1&format=2&gps=false&shutdown=false&timeout=0"), timeoutBody);
}

TEST_F(Poll, ZeroOrNegativeMaxCommandsTakesNone) {
    Post("/sim/v1/commands", R"({"id":"p1","tag":"t","command":"c"})");
    EXPECT_EQ(PollBody("&id=p1&format=2&maxcommands=0&timeout=0"), timeoutBody);
    EXPECT_EQ(PollBody("&id=p1&format=2&maxcommands=-5&timeout=0"), timeoutBody);
    EXPECT_EQ(FirstPayload(server.Port())["commands"][0]["state"].asString(), "queued");
}

TEST_F(Poll, BringsThePositionWithItsTime) {
    const Json::Value gps =
        ParsedJson(PollBody("&id=p1&format=2&gps=true&maxcommands=0&timeout=0"))["gps"];
    EXPECT_EQ(gps.getMemberNames(), (std::vector<std::string>{"latitude", "longitude", "timeFix"}));
    EXPECT_NEAR(gps["latitude"].asDouble(), 57.5, 0.02);
    EXPECT_NEAR(gps["longitude"].asDouble(), 2.0, 0.03);
    const double now = world.clock.UnixSeconds(world.clock.Seconds());
    EXPECT_LE(gps["timeFix"].asDouble(), now);
    const Json::Value next =
        ParsedJson(PollBody("&id=p1&format=2&gps=true&maxcommands=0&timeout=30000"))["gps"];
    EXPECT_GE(next["timeFix"].asDouble(), gps["timeFix"].asDouble() + 0.999);
}

TEST_F(Poll, TheLongestTimeoutIsTaken) {
    Post("/sim/v1/shutdown", R"({"id":"p1","inSeconds":0})");
    EXPECT_EQ(PollBody("&id=p1&format=2&shutdown=true&timeout=9223372036854775807"),
              "{\"shutdown\":true}\n");
}

TEST_F(Poll, RefusesBadParameters) {
    const std::pair<std::string, std::string> cases[] = {
        {"&id=p1&timeout=0", "Parameter 'format' is missing"},
        {"&id=p1&format=1&timeout=0", "Format '1' is not known, only 2"},
        {"&id=p1&format=2", "Parameter 'timeout' is missing"},
        {"&id=p1&format=2&timeout=-1", "Parameter 'timeout' is not a usable number: '-1'"},
        {"&id=p1&format=2&timeout=1s", "Parameter 'timeout' is not a usable number: '1s'"},
        {"&id=p1&format=2&timeout=0&gps=1", "Parameter 'gps' must be true or false, not '1'"},
        {"&id=p1&format=2&timeout=0&shutdown=",
         "Parameter 'shutdown' must be true or false, not ''"},
        {"&id=p1&format=2&timeout=0&maxcommands=x",
         "Parameter 'maxcommands' is not a usable number: 'x'"},
    };
    for (const auto& [parameters, line] : cases) {
        EXPECT_EQ(Get("/xp?op=poll" + parameters),
                  ReplyText("400 Bad Request", "text/plain", line + "\n"));
    }
}

TEST_F(Poll, HoldsTwoHundredAtOnceAndAnswersEachWithItsOwnCommand) {
    constexpr std::size_t count = 200;
    std::vector<std::unique_ptr<Connection>> connections;
    for (std::size_t i = 0; i < count; ++i) {
        connections.push_back(std::make_unique<Connection>(server.Port()));
        connections.back()->Send(
            GetText("/xp?op=poll&id=p" + std::to_string(i) + "&format=2&timeout=50000"));
    }
    AwaitHeldPolls(server.Port(), count);
    for (std::size_t i = 0; i < count; ++i) {
        Post("/sim/v1/commands",
             "{\"id\":\"p" + std::to_string(i) + "\",\"tag\":\"t\",\"command\":\"go\"}");
    }
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(connections[i]->ReadAll(),
                  ReplyText("200 OK", "application/json",
                            "{\"commands\":[{\"command\":\"'t'go\",\"id\":\"p" + std::to_string(i) +
                                "\"}]}\n"));
    }
    EXPECT_EQ(State(server.Port())["heldPolls"].asInt(), 0);
}

TEST_F(Poll, ACommandIsNotLostOnAPollerThatHasHungUp) {
    Connection gone(server.Port());
    gone.Send(GetText("/xp?op=poll&id=p1&format=2&timeout=3600000"));
    AwaitHeldPolls(server.Port(), 1);
    gone.Close();
    AwaitHeldPolls(server.Port(), 0);
    Post("/sim/v1/commands", R"({"id":"p1","tag":"t","command":"go"})");
    EXPECT_EQ(PollBody("&id=p1&format=2&timeout=0"),
              "{\"commands\":[{\"command\":\"'t'go\",\"id\":\"p1\"}]}\n");
}

TEST_F(Poll, AStoppingServerAnswersHeldPolls) {
    World other(SettingsIn(folder.path + "/other"));
    auto stopping = std::make_unique<Server>(other, "127.0.0.1", std::uint16_t{0}, nullptr);
    Connection held(stopping->Port());
    held.Send(GetText("/xp?op=poll&id=p1&format=2&timeout=50000"));
    AwaitHeldPolls(stopping->Port(), 1);
    stopping.reset();
    EXPECT_EQ(held.ReadAll(),
              ReplyText("503 Service Unavailable", "text/plain", "The server is going down\n"));
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
