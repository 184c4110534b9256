#include "support/ScriptedServer.h"
#include "support/SimulatorTest.h"

#include <json/reader.h>
#include <sstream>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using TavoRemotingLib::Testing::OkReply;
using TavoRemotingLib::Testing::ScriptedServer;
using PollTest = SimulatorTest;

Outcome UsageOf(const std::string& line) {
    return {2, "", "tavo poll: " + line + "; see 'tavo poll --help'\n"};
}

TEST_F(PollTest, PrintsCommands) {
    simulator->QueueCommand("P1", "t1", "first\tline\nsecond \033[2J");
    simulator->QueueCommand("P1", "it's", "/data/x", true);
    EXPECT_EQ(RunTavo({"poll", "--commands", "--server", server, "--id", "P1"}),
              (Outcome{0,
                       "command for P1, tag 't1': first\\tline\\nsecond \\x1B[2J\n"
                       "file for P1, tag 'it's': /data/x\n",
                       ""}));
    EXPECT_EQ(simulator->Commands("P1"),
              (std::vector<std::string>{"t1: delivered", "it's: delivered"}));
}

TEST_F(PollTest, PrintsCommandsAsJson) {
    simulator->QueueCommand("P1", "t1", "first\nsecond");
    simulator->QueueCommand("P2", "t2", "/data/\xC3\xA9", true);
    EXPECT_EQ(RunTavo({"poll", "--commands", "-s", server, "-i", "P1", "-i", "P2", "--json"}),
              (Outcome{0,
                       R"({"commands":[{"command":"first\nsecond","id":"P1","isFile":false,)"
                       R"("tag":"t1"},{"command":"/data/\u00e9","id":"P2","isFile":true,)"
                       R"("tag":"t2"}],"position":null,"shutdown":false,"timeout":false})"
                       "\n",
                       ""}));
}

TEST_F(PollTest, AsksForNoMoreThanWanted) {
    simulator->QueueCommand("P1", "t1", "one");
    simulator->QueueCommand("P1", "t2", "two");
    EXPECT_EQ(RunTavo({"poll", "--commands", "-s", server, "-i", "P1", "--most", "1"}),
              (Outcome{0, "command for P1, tag 't1': one\n", ""}));
    EXPECT_EQ(simulator->Commands("P1"), (std::vector<std::string>{"t1: delivered", "t2: queued"}));
}

TEST_F(PollTest, TellsOfAShutdown) {
    simulator->ShutDown("P1");
    EXPECT_EQ(RunTavo({"poll", "--shutdown", "-s", server, "-i", "P1"}),
              (Outcome{0, "shutdown is requested\n", ""}));
    simulator->ShutDown("P1");
    EXPECT_EQ(RunTavo({"poll", "--shutdown", "-s", server, "-i", "P1", "--json", "--quiet"}).code,
              2);
    EXPECT_EQ(RunTavo({"poll", "--shutdown", "-s", server, "-i", "P1", "--quiet"}),
              (Outcome{0, "", ""}));
}

TEST_F(PollTest, NothingHappeningIsATimeOut) {
    const std::string line =
        "tavo poll: nothing happened at " + server + " in the poll's time; poll again\n";
    EXPECT_EQ(RunTavo({"poll", "--commands", "--wait", "0", "-s", server, "-i", "P1"}),
              (Outcome{4, "", line}));
    EXPECT_EQ(RunTavo({"poll", "--commands", "--wait", "0", "-s", server, "-i", "P1", "--json"}),
              (Outcome{4,
                       R"({"commands":[],"position":null,"shutdown":false,"timeout":true})"
                       "\n",
                       line}));
}

TEST_F(PollTest, WaitsForACommand) {
    TavoProcess poll({{"poll", "--commands", "--wait", "100", "-s", server, "-i", "P1"}});
    simulator->AwaitHeldPolls(1);
    simulator->QueueCommand("P1", "t1", "now");
    EXPECT_EQ(poll.Finish(), (Outcome{0, "command for P1, tag 't1': now\n", ""}));
}

TEST_F(PollTest, WithoutAChoiceAsksForAll) {
    simulator->QueueCommand("P1", "t1", "one");
    simulator->ShutDown("P1");
    const Outcome outcome = RunTavo({"poll", "-s", server, "-i", "P1", "--json"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    Json::Value reply;
    std::istringstream(outcome.out) >> reply;
    EXPECT_EQ(reply["commands"].size(), 1U);
    EXPECT_EQ(reply["shutdown"], true);
    EXPECT_TRUE(reply["position"]["latitude"].isDouble());
    EXPECT_EQ(reply["position"]["error"], Json::Value());
}

TEST_F(PollTest, MistakesOfUse) {
    for (const std::string wait :
         {"", ".", "-1", "1s", "1.2345", "2147422", "99999999999", "1..2"}) {
        EXPECT_EQ(RunTavo({"poll", "--wait", wait}),
                  UsageOf("--wait needs seconds, with up to three places and below 2147422, not '" +
                          wait + "'"));
    }
    EXPECT_EQ(RunTavo({"poll", "--most", "0"}), UsageOf("--most needs a number above 0"));
    EXPECT_EQ(RunTavo({"poll", "--most", "1x"}), UsageOf("--most needs a whole number, not '1x'"));
}

/// The request that a server gets for such a poll, and what is printed for its reply.
class ScriptedPollTest : public TavoRemotingLib::Testing::CleanTest {
protected:
    Outcome Poll(const std::string& body, const std::vector<std::string>& options) {
        const ScriptedServer server(OkReply(body));
        std::vector<std::string> words = {"poll", "-s", server.Address(), "-i", "P1"};
        words.insert(words.end(), options.begin(), options.end());
        Outcome outcome = RunTavo(words);
        target = server.OnlyRequest();
        target.resize(target.find(" HTTP"));
        const std::size_t address = outcome.err.find(server.Address());
        if (address != std::string::npos) {
            outcome.err.replace(address, server.Address().size(), "SERVER");
        }
        return outcome;
    }

    std::string target;
};

TEST_F(ScriptedPollTest, SendsWhatIsAskedFor) {
    const std::string shutdown = R"({"shutdown": true})";
    Poll(shutdown, {});
    EXPECT_EQ(target, "GET /xp?op=poll&id=P1&format=2&gps=true&shutdown=true&maxcommands=10"
                      "&timeout=60000");
    Poll(shutdown, {"-i", "P 2", "--shutdown", "--commands", "--most", "1", "--wait", ".5"});
    EXPECT_EQ(target, "GET /xp?op=poll&id=P1&id=P%202&format=2&shutdown=true&timeout=500");
    Poll(shutdown, {"--position", "--wait", "2147421.999"});
    EXPECT_EQ(target, "GET /xp?op=poll&id=P1&format=2&gps=true&maxcommands=0&timeout=2147421999");
    Poll(shutdown, {"--shutdown", "--wait", "5."});
    EXPECT_EQ(target, "GET /xp?op=poll&id=P1&format=2&shutdown=true&maxcommands=0&timeout=5000");
}

TEST_F(ScriptedPollTest, PrintsPositionsAsShortAsExact) {
    const std::string fix = R"({"gps":{"latitude":59.91,"longitude":-10.5,"timeFix":1700000000}})";
    EXPECT_EQ(Poll(fix, {}), (Outcome{0, "position 59.91 -10.5, fixed at 1700000000\n", ""}));
    EXPECT_EQ(Poll(fix, {"--json"}),
              (Outcome{0,
                       R"({"commands":[],"position":{"error":null,"latitude":59.91,)"
                       R"("longitude":-10.5,"timeFix":1700000000.0},"shutdown":false,)"
                       R"("timeout":false})"
                       "\n",
                       ""}));
    const std::string exact = R"({"gps":{"latitude":0.30000000000000004,"longitude":1e-7,)"
                              R"("timeFix":1700000000.1234567}})";
    EXPECT_EQ(
        Poll(exact, {}),
        (Outcome{0, "position 0.30000000000000004 0.0000001, fixed at 1700000000.1234567\n", ""}));
    EXPECT_NE(Poll(exact, {"--json"}).out.find(R"("latitude":0.30000000000000004)"),
              std::string::npos);
}

TEST_F(ScriptedPollTest, PrintsWhyThereIsNoPosition) {
    const std::string lost = R"({"gps":{"error":"no sky\n","latitude":1}})";
    EXPECT_EQ(Poll(lost, {}), (Outcome{0, "no position: no sky\\n\n", ""}));
    EXPECT_EQ(Poll(lost, {"--json"}),
              (Outcome{0,
                       R"({"commands":[],"position":{"error":"no sky\n","latitude":1.0,)"
                       R"("longitude":null,"timeFix":null},"shutdown":false,"timeout":false})"
                       "\n",
                       ""}));
}

TEST_F(ScriptedPollTest, PrintsTheCommandsBeforeAMalformedOne) {
    const std::string half = R"({"commands":[{"id":"P1","command":"'t1'go"},{"id":"P1"}]})";
    const std::string line = "tavo poll: the reply of SERVER is not understood: Missing string "
                             "element 'cmd'; see it with -vv\n";
    EXPECT_EQ(Poll(half, {}), (Outcome{5, "command for P1, tag 't1': go\n", line}));
    EXPECT_EQ(Poll(half, {"--json"}),
              (Outcome{5,
                       R"({"commands":[{"command":"go","id":"P1","isFile":false,"tag":"t1"}],)"
                       R"("position":null,"shutdown":false,"timeout":false})"
                       "\n",
                       line}));
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
