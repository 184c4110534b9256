#include "support/AwaitEnd.h"
#include "support/ProcessTest.h"

#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class ScriptProcessTest : public ProcessTest {
protected:
    ScriptProcessTest() {
        std::filesystem::create_directory(scripts);
    }

    std::vector<std::string> Allowing(std::vector<std::string> more = {}) const {
        more.insert(more.end(), {"--quiet", "--allow-scripts", scripts});
        return Arguments(more);
    }

    void Script(const std::string& name, const std::string& text) const {
        WriteFile(scripts + "/" + name, "#!/bin/sh\n" + text);
        std::filesystem::permissions(scripts + "/" + name, std::filesystem::perms::owner_all);
    }

    static std::string Run(std::uint16_t port, const std::string& command) {
        return Exchange(port, GetText("/xp?op=script&id=P1&cmd=" + command));
    }

    const std::string scripts = folder.path + "/scripts";
};

TEST_F(ScriptProcessTest, NothingIsRunWithoutTheOption) {
    Script("say", "echo hello >../said\n");
    Process process(Arguments({"--quiet"}));
    const std::uint16_t port = AwaitPort(process);
    EXPECT_EQ(BodyOf(Run(port, "say")), "simulated output of 'say'\nnothing was run\n");
    EXPECT_EQ(BodyOf(Run(port, "id")), "simulated output of 'id'\nnothing was run\n");
    EXPECT_FALSE(State(port)["allowScripts"].asBool());
    EXPECT_FALSE(std::filesystem::exists(folder.path + "/said"));
}

TEST_F(ScriptProcessTest, WhatIsAllowedIsRunAndItsEndIsInTheState) {
    Script("say", "printf 'hello %s' \"$1\"\nexit 3\n");
    Process process(Allowing());
    const std::uint16_t port = AwaitPort(process);
    EXPECT_TRUE(State(port)["allowScripts"].asBool());
    EXPECT_EQ(Run(port, "say%20you%20there"), ReplyText("200 OK", "text/plain", "hello you"));
    EXPECT_EQ(Run(port, "id"), ReplyText("403 Forbidden", "text/plain",
                                         "There is no script 'id' that may be run\n"));
    Exchange(port, PostText("/sim/v1/scripts", "application/json",
                            R"({"match":"say *","output":"canned"})"));
    EXPECT_EQ(BodyOf(Run(port, "say%20you")), "canned");
    EXPECT_EQ(JsonText(FirstPayload(port)["scripts"]),
              R"([{"command":"say you there","exitStatus":3,"killed":null,"output":"hello you"},)"
              R"({"command":"say you","exitStatus":null,"killed":null,"output":"canned"}])");
}

TEST_F(ScriptProcessTest, AKilledScriptIsAFailure) {
    Script("slow", "echo begun\nexec sleep 1000\n");
    Script("loud", "exec cat /dev/zero\n");
    Process process(Allowing({"--script-timeout", "0.3"}));
    const std::uint16_t port = AwaitPort(process);
    EXPECT_EQ(Run(port, "slow"), ReplyText("500 Internal Server Error", "text/plain",
                                           "The script was killed: more than 0.3 seconds\n"));
    EXPECT_EQ(JsonText(FirstPayload(port)["scripts"]),
              R"([{"command":"slow","exitStatus":null,"killed":"more than 0.3 seconds",)"
              R"("output":"begun\n"}])");
    EXPECT_EQ(BodyOf(Run(port, "loud")),
              "The script was killed: more than 1048576 bytes of output\n");
}

TEST_F(ScriptProcessTest, AStopKillsWhatRuns) {
    Script("slow", "sleep 1000 &\necho $! >../child.new\nmv ../child.new ../child\nwait\n");
    Process process(Allowing());
    const std::uint16_t port = AwaitPort(process);
    Connection connection(port);
    connection.Send(GetText("/xp?op=script&id=P1&cmd=slow"));
    while (!std::filesystem::exists(folder.path + "/child")) {
        std::this_thread::yield();
    }
    const Clock clock;
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_LT(clock.Seconds(), 5);
    TavoRemotingLib::Testing::AwaitEnd(std::stoi(ReadFile(folder.path + "/child")));
    EXPECT_EQ(process.Errors(), "");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
