#include "model/ScriptRun.h"
#include "support/AwaitEnd.h"
#include "support/Process.h"
#include "support/ResourceLimit.h"
#include "support/Wire.h"

#include <csignal>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class ScriptRunTest : public ::testing::Test {
protected:
    void Script(const std::string& name, const std::string& text) const {
        const std::string path = scripts + "/" + name;
        WriteFile(path, "#!/bin/sh\n" + text);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    ScriptRun Run(const std::string& command, const ScriptLimits& limits = {}) const {
        return RunScriptIn(scripts, command, limits, [] { return false; });
    }

    std::string Refused(const std::string& command) const {
        try {
            Run(command);
        } catch (const Refusal& refusal) {
            return std::to_string(refusal.status) + " " + refusal.what();
        }
        return "";
    }

    const TempFolder folder;
    const std::string scripts = folder.path + "/scripts";

    ScriptRunTest() {
        std::filesystem::create_directory(scripts);
    }
};

TEST_F(ScriptRunTest, GivesBothOutputsInTheirOrderAndTheExitStatus) {
    Script("say", "echo one\necho two >&2\nprintf three\nexit 7\n");
    const ScriptRun run = Run("say");
    EXPECT_EQ(run.output, "one\ntwo\nthree");
    EXPECT_EQ(run.exitStatus, 7);
    EXPECT_EQ(run.killed, "");
}

TEST_F(ScriptRunTest, SplitsAtBlanksAndNothingElse) {
    Script("words", "for word in \"$0\" \"$@\"; do printf '<%s>' \"$word\"; done\n");
    EXPECT_EQ(Run(" words  a\t'b c' $HOME `id` * ;rm&|>x \\ \"").output,
              "<" + scripts + "/words><a><'b><c'><$HOME><`id`><*><;rm&|>x><\\><\">");
    EXPECT_EQ(Run("words a\nb").output, "<" + scripts + "/words><a\nb>");
    EXPECT_EQ(Entries(scripts), std::vector<std::string>{"words"});
}

TEST_F(ScriptRunTest, RunsInItsFolderWithoutInputAndOtherFiles) {
    Script("where", "pwd\ncat\nls /proc/self/fd | tr '\\n' ' '\n");
    std::ofstream open(folder.path + "/open");
    EXPECT_EQ(Run("where").output, scripts + "\n0 1 2 3 "); // 3 is the folder that ls reads
}

TEST_F(ScriptRunTest, IsStartedWithTheUsualSignals) {
    // No script, since a shell would put its signals right by itself.
    std::filesystem::copy_file("/bin/sed", scripts + "/sed");
    const TavoRemotingLib::Testing::IgnoredSignal noPipe(SIGPIPE);
    const TavoRemotingLib::Testing::IgnoredSignal noLargeFile(SIGXFSZ);
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &ending, &before);
    const std::string blocked = Run("sed -n s/^SigBlk:.//p /proc/self/status").output;
    const std::string ignored = Run("sed -n s/^SigIgn:.//p /proc/self/status").output;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(blocked, "0000000000000000\n");
    for (const int number : {SIGPIPE, SIGXFSZ}) {
        EXPECT_EQ(std::stoull(ignored, nullptr, 16) >> (number - 1) & 1, 0U) << ignored;
    }
}

TEST_F(ScriptRunTest, TakesARelativeFolder) {
    Script("say", "echo hello\n");
    const std::string relative = std::filesystem::relative(scripts).string();
    EXPECT_EQ(RunScriptIn(relative, "say", {}, [] { return false; }).output, "hello\n");
}

TEST_F(ScriptRunTest, RunsNothingButExecutableFilesOfItsFolder) {
    Script("say", "echo hello\n");
    WriteFile(scripts + "/text", "#!/bin/sh\n");
    std::filesystem::create_directory(scripts + "/sub");
    Script("sub/say", "echo hello\n");
    WriteFile(folder.path + "/outside", "#!/bin/sh\necho outside\n");
    std::filesystem::permissions(folder.path + "/outside", std::filesystem::perms::owner_all);
    for (const char* const name :
         {"none", "text", "sub", ".", "..", "sub/say", "./say", "../outside", "/bin/sh", "sh"}) {
        EXPECT_EQ(Refused(name + std::string(" -c id")),
                  "403 There is no script '" + std::string(name) + "' that may be run");
    }
    EXPECT_EQ(Refused(" \t"), "400 The command has no words, or a zero byte");
    EXPECT_EQ(Refused(std::string("say\0x", 5)), "400 The command has no words, or a zero byte");
}

TEST_F(ScriptRunTest, CannotStartWhatIsNoProgram) {
    if (TavoRemotingLib::Testing::CommandOf("program").size() > 1) {
        GTEST_SKIP() << "under an emulator it exits with 127 instead";
    }
    WriteFile(scripts + "/broken", "not a program");
    std::filesystem::permissions(scripts + "/broken", std::filesystem::perms::owner_all);
    EXPECT_EQ(Refused("broken"), "500 The script cannot be started: Exec format error");
}

TEST_F(ScriptRunTest, IsKilledWithItsChildrenAtTheTimeLimit) {
    Script("slow", "echo begun\nsleep 1000 &\necho $! >../child\nwait\n");
    ScriptLimits limits;
    limits.seconds = 0.3;
    const ScriptRun run = Run("slow", limits);
    EXPECT_EQ(run.output.substr(0, 6), "begun\n");
    EXPECT_FALSE(run.exitStatus);
    EXPECT_EQ(run.killed, "more than 0.3 seconds");
    TavoRemotingLib::Testing::AwaitEnd(std::stoi(ReadFile(folder.path + "/child")));
}

TEST_F(ScriptRunTest, IsKilledBeyondTheOutputLimit) {
    Script("loud", "exec cat /dev/zero\n");
    ScriptLimits limits;
    limits.bytes = 100000;
    const ScriptRun run = Run("loud", limits);
    EXPECT_EQ(run.output, std::string(100000, '\0'));
    EXPECT_FALSE(run.exitStatus);
    EXPECT_EQ(run.killed, "more than 100000 bytes of output");
}

TEST_F(ScriptRunTest, ItsOutputMayReachTheLimit) {
    Script("exact", "head -c 100000 /dev/zero\n");
    ScriptLimits limits;
    limits.bytes = 100000;
    const ScriptRun run = Run("exact", limits);
    EXPECT_EQ(run.output.size(), 100000U);
    EXPECT_EQ(run.killed, "");
    EXPECT_EQ(run.exitStatus, 0);
}

TEST_F(ScriptRunTest, EndsWithTheScriptAndKillsWhatItLeavesBehind) {
    Script("leave", "sleep 1000 &\necho $! >../child\necho done\n");
    const ScriptRun run = Run("leave");
    EXPECT_EQ(run.output, "done\n");
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.killed, "");
    TavoRemotingLib::Testing::AwaitEnd(std::stoi(ReadFile(folder.path + "/child")));
}

TEST_F(ScriptRunTest, ASignalsEndHasNoExitStatus) {
    Script("crash", "kill -SEGV $$\n");
    const ScriptRun run = Run("crash");
    EXPECT_FALSE(run.exitStatus);
    EXPECT_EQ(run.killed, "");
}

TEST_F(ScriptRunTest, IsKilledWhenTheServerGoesDown) {
    Script("slow", "echo begun\nexec sleep 1000\n");
    int asked = 0;
    const ScriptRun run = RunScriptIn(scripts, "slow", {}, [&] { return ++asked > 1; });
    EXPECT_EQ(run.killed, "the server is going down");
    EXPECT_FALSE(run.exitStatus);
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
