#include "support/ScriptedServer.h"
#include "support/SimulatorTest.h"

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using TavoRemotingLib::Testing::OkReply;
using TavoRemotingLib::Testing::ScriptedServer;
using ScriptTest = SimulatorTest;
using ShutdownTest = SimulatorTest;

TEST_F(ScriptTest, PrintsTheOutputAsReceived) {
    EXPECT_EQ(RunTavo({"script", "-s", server, "-i", "P1", "df -h /data"}),
              (Outcome{0, "simulated output of 'df -h /data'\nnothing was run\n", ""}));
    EXPECT_EQ(Payload()["scripts"].size(), 1U);
    const std::string bytes("a\0\xFF\033[2J no line end", 18);
    const ScriptedServer scripted(OkReply(bytes));
    EXPECT_EQ(RunTavo({"script", "-s", scripted.Address(), "-i", "P1", "x"}),
              (Outcome{0, bytes, ""}));
}

TEST_F(ScriptTest, PrintsTheOutputAsJson) {
    EXPECT_EQ(RunTavo({"script", "-s", server, "-i", "P1", "x", "--json"}),
              (Outcome{0,
                       R"({"id":"P1","output":"simulated output of 'x'\nnothing was run\n"})"
                       "\n",
                       ""}));
    const ScriptedServer scripted(OkReply("\xC3\xA9\xFF\n"));
    EXPECT_EQ(RunTavo({"script", "-s", scripted.Address(), "-i", "P1", "x", "--json"}),
              (Outcome{0,
                       R"({"id":"P1","output":"\u00e9\ufffd\n"})"
                       "\n",
                       ""}));
}

TEST_F(ShutdownTest, IsPostponed) {
    simulator->ShutDown("P1", 1000);
    EXPECT_EQ(RunTavo({"delay-shutdown", "3000", "-s", server, "-i", "P1"}),
              (Outcome{0, "P1: shutdown postponed by 3000\n", ""}));
    EXPECT_GT(Payload()["shutdown"]["inSeconds"].asDouble(), 2000);
    EXPECT_EQ(RunTavo({"delay-shutdown", "-3900", "-s", server, "-i", "P1", "--json"}),
              (Outcome{0, "{\"delay\":-3900,\"id\":\"P1\"}\n", ""}));
    EXPECT_LT(Payload()["shutdown"]["inSeconds"].asDouble(), 1000);
}

TEST_F(ShutdownTest, DelayIsANumber) {
    for (const std::string wrong : {"", "1.5", "9s", "99999999999999999999"}) {
        EXPECT_EQ(RunTavo({"delay-shutdown", wrong}),
                  (Outcome{2, "",
                           "tavo delay-shutdown: DELAY needs a whole number, not '" + wrong +
                               "'; see 'tavo delay-shutdown --help'\n"}));
    }
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
