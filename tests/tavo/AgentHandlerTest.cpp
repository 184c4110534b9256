#include "support/AgentTest.h"
#include "support/AwaitEnd.h"
#include "support/Program.h"

#include <chrono>
#include <sys/stat.h>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

class AgentHandlerTest : public AgentTest {};

TEST_F(AgentHandlerTest, GetsTheCommandInItsEnvironmentAndOnStandardInput) {
    Queue("it's", "two words; $HOME `x`\n");
    Queue("t2", "/data/plan.txt", true);
    Start({}, "echo \"$TAVO_ID|$TAVO_TAG|$TAVO_KIND|$TAVO_COMMAND|\"; cat; echo \"<$*\"");
    EXPECT_EQ(AwaitAnswers(2),
              (Lines{"it's: P1|it's|plain|two words; $HOME `x`\n|\ntwo words; $HOME `x`\n<\n",
                     "t2: P1|t2|file|/data/plan.txt|\n/data/plan.txt<\n"}));
    EXPECT_EQ(Stop(), (Outcome{0, "P1: 'it's' succeeded\nP1: 't2' succeeded\n", ""}));
    EXPECT_EQ(simulator->Commands("P1"), (Lines{"it's: answered", "t2: answered"}));
}

TEST_F(AgentHandlerTest, NoShellSeesItsWords) {
    Queue("t1");
    StartWords({}, {"/bin/echo", "a  b", "$HOME", ";", "-n", "--json"});
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: a  b $HOME ; -n --json\n"});
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, ItsExitCodeAndSignalAreFailures) {
    Queue("t1", "echo no; exit 3");
    Queue("t2", "kill -KILL $$");
    Queue("t3", "echo err >&2; exit 0");
    Start({"--json"}, "eval \"$TAVO_COMMAND\"");
    EXPECT_EQ(AwaitAnswers(3), (Lines{"t1: no\n[exit code 3] (failed)",
                                      "t2: [ended by signal 9] (failed)", "t3: err\n"}));
    EXPECT_EQ(Stop(), (Outcome{0,
                               "{\"event\":\"failed\",\"id\":\"P1\",\"tag\":\"t1\"}\n"
                               "{\"event\":\"failed\",\"id\":\"P1\",\"tag\":\"t2\"}\n"
                               "{\"event\":\"succeeded\",\"id\":\"P1\",\"tag\":\"t3\"}\n",
                               ""}));
}

TEST_F(AgentHandlerTest, OneThatCannotBeRunIsAnAnswerToo) {
    if (TavoRemotingLib::Testing::CommandOf("program").size() > 1) {
        GTEST_SKIP() << "under an emulator it exits with 127 instead";
    }
    Queue("t1");
    StartWords({}, {"/no/such/handler"});
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: [cannot run '/no/such/handler': No such file or "
                                     "directory] (failed)"});
    EXPECT_EQ(Stop().err, "tavo agent: cannot run '/no/such/handler': No such file or directory\n");
}

TEST_F(AgentHandlerTest, ALongOneTellsItsProgress) {
    Queue("t1");
    // Goes on when the first progress has arrived.
    Start({"--progress-every", "1"}, "echo one; read -r line < \"$0.go\"; echo $line; exit 1");
    ASSERT_EQ(std::system(("mkfifo " + Path("ran.go")).c_str()), 0);
    AwaitAnswers(1);
    WriteFile("ran.go", "two\n");
    Lines answers;
    while (answers.empty() || answers.back().find("[exit code 1]") == std::string::npos) {
        answers = simulator->Answers("P1");
    }
    EXPECT_EQ(answers.front(), "t1: one\n (more follows)");
    EXPECT_EQ(answers.back(), "t1: two\n[exit code 1] (failed)");
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, ProgressThatTheServerDidNotTakeComesLater) {
    simulator->Arm("status-500", "reply", 1);
    Queue("t1");
    ASSERT_EQ(mkfifo(Path("ran.go").c_str(), 0600), 0);
    Start({"--progress-every", "1"}, "echo one; read -r line < \"$0.go\"; echo $line");
    agent->AwaitErrors("no progress told: ");
    WriteFile("ran.go", "two\n");
    std::string text;
    while (text.find("two") == std::string::npos) {
        text.clear();
        for (const std::string& answer : simulator->Answers("P1")) {
            text += answer.substr(4, answer.find(" (more follows)") - 4);
        }
    }
    EXPECT_EQ(text, "one\ntwo\n");
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, OneThatHangsIsEndedWithItsChildren) {
    Queue("t1");
    Start({"--handler-timeout", "1"}, "trap '' TERM; echo $$ >\"$0\"; sleep 1000 & sleep 1000");
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: [took longer than 1 s] (failed)"});
    EXPECT_EQ(Stop().code, 0);
    TavoRemotingLib::Testing::AwaitEnd(std::stoi(FileText("ran")));
}

TEST_F(AgentHandlerTest, OneThatLeftItsGroupIsEndedToo) {
    Queue("t1");
    StartWords({"--handler-timeout", "1"},
               {"python3", "-c",
                "import os, time; os.setpgid(0, os.getpgid(os.getppid())); time.sleep(1000)"});
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: [took longer than 1 s] (failed)"});
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, ALongCommandIsOnStandardInputOnly) {
    Queue("t1", std::string(100000, 'x'));
    Queue("t2", std::string(200000, 'x'));
    Start({}, "echo ${#TAVO_COMMAND}; wc -c", {"TAVO_COMMAND=old"});
    EXPECT_EQ(AwaitAnswers(2), (Lines{"t1: 100000\n100000\n", "t2: 0\n200000\n"}));
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, AFloodIsCut) {
    Queue("t1");
    Start({"--output-limit", "10"}, "head -c 1000000 /dev/zero | tr '\\0' x; exit 0");
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: xxxxxxxxxx\n[999990 bytes more were dropped]"});
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, AGrandchildThatHoldsThePipeDoesNotHoldTheAgent) {
    Queue("t1");
    Start({}, "(trap '' HUP TERM; sleep 1000) & echo done");
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: done\n"});
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, SeveralPayloadsAreServed) {
    simulator->QueueCommand("P1", "a", "one");
    simulator->QueueCommand("P2", "b", "two");
    Start({"--id", "P2"}, "echo $TAVO_ID");
    EXPECT_EQ(AwaitAnswers(1), Lines{"a: P1\n"});
    Lines second;
    while (second.empty()) {
        second = simulator->Answers("P2");
    }
    EXPECT_EQ(second, Lines{"b: P2\n"});
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentHandlerTest, AStopEndsItAndTheAnswerIsLeftToTheNextAgent) {
    Queue("t1");
    Start({}, "echo $$ >\"$0.new\"; mv \"$0.new\" \"$0\"; sleep 1000");
    while (FileText("ran").empty()) {
    }
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Stop().code, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
    TavoRemotingLib::Testing::AwaitEnd(std::stoi(FileText("ran")));
    EXPECT_EQ(simulator->Answers("P1"), Lines{});
    Start({}, "echo again");
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: [interrupted: the agent was stopped] (failed)"});
    EXPECT_EQ(Stop().code, 0);
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
