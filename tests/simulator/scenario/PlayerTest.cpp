#include "scenario/Player.h"
#include "support/StandingWorld.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

using Lines = std::vector<std::string>;
using std::chrono::milliseconds;

class PlayerTest : public StandingWorld {
protected:
    /// The tags of a payload's commands.
    Lines Tags(const std::string& id) {
        Lines tags;
        world.payloads.Look([&](const PayloadRegistry::Payloads& payloads) {
            const auto found = payloads.find(id);
            if (found == payloads.end()) {
                return;
            }
            found->second.commands.Each([&](const Command& command) {
                tags.push_back(command.tag);
                return true;
            });
        });
        return tags;
    }
};

TEST_F(PlayerTest, PlaysEachStepOnceWhenItsTimeHasCome) {
    const Scenario scenario = ParseScenario(R"({
        "steps": [
            {"at": 0, "commands": {"id": "P1", "tag": "a", "command": "c"}},
            {"at": 10, "commands": {"id": "P1", "tag": "b", "command": "c"}},
            {"at": 10, "switches": {"id": "P1", "on": true}},
            {"at": 20, "commands": {"id": "P1", "tag": "c", "command": "c"}}
        ],
        "end": {"at": 30}, "expect": [{"switch": {"id": "P1", "on": true}}]
    })");
    Player player(scenario, world);
    player.PlayDue();
    player.PlayDue();
    EXPECT_EQ(Tags("P1"), Lines{"a"});
    world.clock.Step(9.9);
    player.PlayDue();
    EXPECT_EQ(Tags("P1"), Lines{"a"});
    EXPECT_FALSE(player.Conclude().met);
    world.clock.Step(0.2);
    player.PlayDue();
    EXPECT_EQ(Tags("P1"), (Lines{"a", "b"}));
    EXPECT_TRUE(player.Conclude().met);
    world.clock.Step(100);
    EXPECT_FALSE(player.Over()); // a step is left
    player.PlayDue();
    EXPECT_EQ(Tags("P1"), (Lines{"a", "b", "c"}));
    EXPECT_TRUE(player.Over());
}

TEST_F(PlayerTest, AStepOfTheClockBringsLaterStepsAtOnce) {
    const Scenario scenario = ParseScenario(R"({
        "steps": [
            {"at": 0, "clock": {"stepSeconds": 3600}},
            {"at": 3600, "commands": {"id": "P1", "tag": "late", "command": "c"}}
        ],
        "end": {"at": 3601}, "expect": [{"noFlags": {}}]
    })");
    Player player(scenario, world);
    player.PlayDue();
    EXPECT_EQ(Tags("P1"), Lines{"late"});
    EXPECT_FALSE(player.Over());
    world.clock.Step(1);
    EXPECT_TRUE(player.Over());
}

TEST_F(PlayerTest, EndsOnceAllIsMetAndPlayed) {
    const Scenario scenario = ParseScenario(R"({
        "steps": [{"at": 5, "forget": {"id": "P2"}}],
        "end": {"at": 50, "whenMet": true}, "expect": [{"payload": {"id": "P1", "off": true}}]
    })");
    Player player(scenario, world);
    Get("op=off&id=P2");
    Get("op=off&id=P1");
    player.PlayDue();
    EXPECT_FALSE(player.Over()); // a step is left
    world.clock.Step(5);
    player.PlayDue();
    EXPECT_TRUE(player.Over());
    const Player::Report report = player.Conclude();
    EXPECT_TRUE(report.met);
    EXPECT_EQ(report.lines, (Lines{R"(met: expect[0]: {"payload":{"id":"P1","off":true}})",
                                   "scenario: 1 of 1 expectations met"}));
}

TEST_F(PlayerTest, LooksAgainOnlyAfterAChange) {
    const Scenario scenario = ParseScenario(R"({
        "end": {"whenMet": true}, "expect": [{"payload": {"id": "P1", "off": true}}]
    })");
    Player player(scenario, world);
    Get("op=metadone&id=P1");
    EXPECT_FALSE(player.Over());
    EXPECT_FALSE(player.Over());
    Get("op=off&id=P1");
    EXPECT_TRUE(player.Over());
}

TEST_F(PlayerTest, WithoutWhenMetItLastsToItsTime) {
    const Scenario scenario = ParseScenario(R"({"end": {"at": 2}, "expect": [{"noFlags": {}}]})");
    Player player(scenario, world);
    EXPECT_FALSE(player.Over());
    world.clock.Step(2);
    EXPECT_TRUE(player.Over());
}

TEST_F(PlayerTest, ARefusedStepSpoilsIt) {
    const Scenario scenario = ParseScenario(R"({
        "steps": [{"at": 0, "forget": {"id": "P1"}}, {"at": 0, "disarm": {"number": 1}}],
        "end": {"at": 1}, "expect": [{"name": "good manners", "noFlags": {}}]
    })");
    Player player(scenario, world);
    player.PlayDue();
    const Player::Report report = player.Conclude();
    EXPECT_FALSE(report.met);
    EXPECT_EQ(report.lines,
              (Lines{"refused: steps[0].forget: There is no such payload",
                     "refused: steps[1].disarm: There is no armed fault of this number",
                     "met: good manners", "scenario: 1 of 1 expectations met, steps refused: 2"}));
}

TEST_F(PlayerTest, PausesUntilTheNextStepAtTheClocksSpeed) {
    const Scenario scenario = ParseScenario(R"({
        "steps": [{"at": 60, "vehicle": {"error": "no satellites"}}],
        "end": {"at": 600}, "expect": [{"noFlags": {}}]
    })");
    Player player(scenario, world);
    EXPECT_EQ(player.Pause(milliseconds(20)), milliseconds(20)); // the clock stands still
    world.clock.SetSpeed(60);
    const milliseconds toTheStep = player.Pause(milliseconds(2000));
    EXPECT_LE(toTheStep, milliseconds(1000));
    EXPECT_GT(toTheStep, milliseconds(20));
    world.clock.Step(60);
    EXPECT_EQ(player.Pause(milliseconds(20)), milliseconds(0));
    player.PlayDue();
    EXPECT_EQ(player.Pause(milliseconds(20)), milliseconds(20));
    world.clock.Step(540);
    EXPECT_EQ(player.Pause(milliseconds(20)), milliseconds(0));
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
