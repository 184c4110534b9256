#include "support/AgentTest.h"
#include "support/AwaitEnd.h"
#include "support/ScriptedServer.h"

#include <chrono>
#include <csignal>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using namespace TavoRemotingLib::Testing;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

/// A server that refuses, hangs or hurries.
class AgentTroubleTest : public AgentTest {
protected:
    /// How long the agent takes to end after SIGTERM.
    steady_clock::duration TimeToStop() {
        const auto begin = steady_clock::now();
        EXPECT_EQ(Stop().code, 0);
        return steady_clock::now() - begin;
    }
};

const char command[] = R"({"commands": [{"id": "P1", "command": "'t1':go"}]})";

TEST_F(AgentTroubleTest, AnAnswerThatIsRefusedIsTriedAgain) {
    simulator->Arm("status-500", "reply", 2);
    Queue("t1");
    Start({}, "echo done");
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: done\n"});
    EXPECT_EQ(Stop(), (Outcome{0, "P1: 't1' succeeded\n",
                               "tavo agent: the answer to 't1' is kept: " + server +
                                   " refused: HTTP/1.1 500 Internal Server Error; see its answer "
                                   "with -vv\n"}));
}

TEST_F(AgentTroubleTest, AnAnswerThatIsRefusedDoesNotHoldUpFurtherCommands) {
    simulator->Arm("status-500", "reply", 1000000);
    Queue("t1");
    Start({}, "echo \"$TAVO_TAG\" >>\"$0\"");
    agent->AwaitErrors("is kept");
    Queue("t2");
    while (FileLines("ran") != Lines{"t1", "t2"}) {
    }
    agent->AwaitErrors("'t2' is kept");
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentTroubleTest, AServerThatHasNothingNewIsNotPolledWithoutEnd) {
    ScriptedServer hasty(OkReply("{\"timeout\": true}"));
    server = hasty.Address();
    const auto begin = steady_clock::now();
    Start({}, "true");
    hasty.WaitForConnections(5);
    EXPECT_GE(steady_clock::now() - begin, milliseconds(1000));
    EXPECT_EQ(Stop(), (Outcome{0, "", ""}));
}

TEST_F(AgentTroubleTest, AStopDoesNotWaitForAPollThatIsHeldTooLong) {
    ScriptedServer silent(Script{ReadHead(), Stall()});
    server = silent.Address();
    Start({}, "true");
    silent.WaitForConnections(1);
    EXPECT_LT(TimeToStop(), seconds(3)) << "the poll's time is 1 s";
}

TEST_F(AgentTroubleTest, AHandlersTimeIsKeptWhileTheServerIsSilent) {
    ScriptedServer silent({Reply(OkReply(command)), Script{ReadRequest(), Stall()}});
    server = silent.Address();
    Start({"--progress-every", "1", "--handler-timeout", "2"},
          "trap '' TERM; echo $$ >\"$0\"; while :; do sleep 1; done", {"TMPDIR=" + Path("data")});
    silent.WaitForConnections(2);
    AwaitEnd(std::stoi(FileText("ran")));
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentTroubleTest, AStopDoesNotWaitForProgressAndLeavesNoHandler) {
    ScriptedServer silent({Reply(OkReply(command)), Script{ReadRequest(), Stall()}});
    server = silent.Address();
    // A text that is sent passes through a temporary file, which then stays.
    Start({"--progress-every", "1"}, "echo $$ >\"$0\"; exec sleep 1000",
          {"TMPDIR=" + Path("data")});
    silent.WaitForConnections(2);
    EXPECT_LT(TimeToStop(), seconds(3));
    AwaitEnd(std::stoi(FileText("ran")));
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
