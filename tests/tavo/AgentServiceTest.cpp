#include "support/AgentTest.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <json/reader.h>
#include <sstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

/// The service manager's socket.
class Manager {
public:
    explicit Manager(const std::string& theName) : name(theName) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (name.size() >= sizeof address.sun_path) {
            throw std::runtime_error("too long a name for a socket");
        }
        name.copy(address.sun_path, name.size());
        EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;
    ~Manager() {
        close(descriptor);
        unlink(name.c_str());
    }

    std::string Variable() const {
        return "NOTIFY_SOCKET=" + name;
    }

    /// Waits for what it is told next.
    std::string Next() const {
        std::string message(100, '\0');
        message.resize(static_cast<std::size_t>(recv(descriptor, message.data(), 100, 0)));
        return message;
    }

    /// Drops what it has been told.
    void Forget() const {
        std::string before(100, '\0');
        while (recv(descriptor, before.data(), before.size(), MSG_DONTWAIT) > 0) {
        }
    }

private:
    const std::string name;
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

class AgentServiceTest : public AgentTest {
protected:
    /// Waits for it to end of itself.
    Outcome Finish() {
        return agent->Finish();
    }

    /// A program that is this shell script.
    std::string Script(const std::string& text) const {
        WriteFile("script", "#!/bin/sh\n" + text + "\n");
        std::filesystem::permissions(Path("script"), std::filesystem::perms::owner_all);
        return Path("script");
    }
};

TEST_F(AgentServiceTest, AShutdownIsPostponedThenCarriedOut) {
    simulator->ShutDown("P1");
    Start({"--on-shutdown", "/bin/true", "--postpone", "100"}, "true");
    EXPECT_EQ(Finish(), (Outcome{0, "off\n", ""}));
    const Lines targets = simulator->Targets();
    ASSERT_EQ(targets.size(), 3U);
    EXPECT_EQ(targets[0].rfind("/xp?op=poll&", 0), 0U);
    EXPECT_EQ(targets[1], "/xp?op=offdelay&id=P1&delay=100&setdefault=0");
    EXPECT_EQ(targets[2], "/xp?op=off&id=P1");
    EXPECT_TRUE(Payload()["off"].asBool());
    EXPECT_TRUE(Payload()["shutdown"].isNull());
}

TEST_F(AgentServiceTest, AShutdownsProgramRunsOnceThoughTheServerRefusesTheEnd) {
    simulator->ShutDown("P1");
    simulator->Arm("status-500", "off", 2);
    Start({"--on-shutdown", Script("echo over >>" + Path("ran"))}, "true");
    EXPECT_EQ(Finish(), (Outcome{0, "off\n",
                                 "tavo agent: " + server +
                                     " refused: HTTP/1.1 500 Internal Server Error; see its "
                                     "answer with -vv; carrying on\ntavo agent: " +
                                     server + " is back\n"}));
    EXPECT_EQ(FileLines("ran"), Lines{"over"});
    EXPECT_TRUE(Payload()["off"].asBool());
}

TEST_F(AgentServiceTest, AStoppedAgentLeavesTheShutdownToTheNext) {
    simulator->ShutDown("P1");
    // Within the poll's time a stopped agent is still to tell.
    Start({"--poll", "60", "--on-shutdown",
           Script("echo over >" + Path("ran") + "; exec sleep 1000")},
          "true");
    while (FileText("ran").empty()) {
    }
    EXPECT_EQ(Stop(), (Outcome{0, "",
                               "tavo agent: the shutdown's program failed: [interrupted: the "
                               "agent was stopped]\n"}));
    EXPECT_FALSE(Payload()["off"].asBool());
    Start({}, "true");
    EXPECT_EQ(Finish(), (Outcome{0, "off\n", ""}));
    EXPECT_TRUE(Payload()["off"].asBool());
}

TEST_F(AgentServiceTest, AShutdownsProgramThatFailsIsToldAndDoesNotHoldIt) {
    simulator->ShutDown("P1");
    Start({"--on-shutdown", "/bin/false", "--json"}, "true");
    EXPECT_EQ(Finish(), (Outcome{0, "{\"event\":\"off\"}\n",
                                 "tavo agent: the shutdown's program failed: [exit code 1]\n"}));
    EXPECT_TRUE(Payload()["off"].asBool());
}

TEST_F(AgentServiceTest, CommandsOfTheSamePollAreDoneBeforeTheShutdown) {
    Queue("t1");
    simulator->ShutDown("P1");
    Start({"--quiet"}, "echo first");
    EXPECT_EQ(Finish(), (Outcome{0, "", ""}));
    EXPECT_EQ(simulator->Answers("P1"), Lines{"t1: first\n"});
    EXPECT_TRUE(Payload()["off"].asBool());
}

TEST_F(AgentServiceTest, ThePositionIsKeptInAFile) {
    simulator->Anchor(57.25, -2.5);
    Start({"--position-file", Path("position")}, "true");
    while (FileText("position").empty()) {
    }
    Json::Value position;
    std::istringstream(FileText("position")) >> position;
    EXPECT_DOUBLE_EQ(position["latitude"].asDouble(), 57.25);
    EXPECT_DOUBLE_EQ(position["longitude"].asDouble(), -2.5);
    EXPECT_TRUE(position["error"].isNull());
    EXPECT_GT(position["timeFix"].asDouble(), 0);
    EXPECT_EQ(Stop(), (Outcome{0, "", ""}));
}

TEST_F(AgentServiceTest, AServerThatIsAwayIsToldOnceAndSoIsItsReturn) {
    const std::string port = server.substr(server.find(':') + 1);
    simulator.reset();
    Start({}, "echo back");
    agent->AwaitErrors("carrying on");
    simulator =
        std::make_unique<TavoRemotingLib::Testing::Simulator>(Folder(), Lines{"--port", port});
    Queue("t1");
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: back\n"});
    agent->AwaitErrors("is back");
    const Outcome outcome = Stop();
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err.find("carrying on"), outcome.err.rfind("carrying on"));
    EXPECT_EQ(outcome.err.substr(outcome.err.find('\n') + 1),
              "tavo agent: " + server + " is back\n");
}

TEST_F(AgentServiceTest, AStopIsHeededWhilePollingAndWhileTheServerIsAway) {
    Start({}, "true");
    simulator->AwaitHeldPolls(1);
    auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Stop(), (Outcome{0, "", ""}));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
    simulator.reset();
    Start({}, "true");
    agent->AwaitErrors("carrying on");
    begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Stop().code, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST_F(AgentServiceTest, TheServiceManagerIsTold) {
    const Manager manager(Path("notify"));
    Start({}, "echo runs >\"$0\"; exec sleep 1000", {manager.Variable()});
    EXPECT_EQ(manager.Next(), "READY=1");
    EXPECT_EQ(manager.Next(), "WATCHDOG=1");
    EXPECT_EQ(manager.Next(), "WATCHDOG=1") << "once for every poll";
    Queue("t1", "wait");
    while (FileText("ran").empty()) {
    }
    manager.Forget();
    EXPECT_EQ(manager.Next(), "WATCHDOG=1");
    EXPECT_EQ(manager.Next(), "WATCHDOG=1") << "while a handler runs";
    agent->Signal(SIGTERM);
    std::string message;
    do {
        message = manager.Next();
    } while (message == "WATCHDOG=1");
    EXPECT_EQ(message, "STOPPING=1");
    EXPECT_EQ(agent->Finish().code, 0);
}

TEST_F(AgentServiceTest, TheServiceManagerIsToldWhileTheServerIsAway) {
    const Manager manager(Path("notify"));
    simulator.reset();
    Start({"--retry-most", "60"}, "true", {manager.Variable()});
    EXPECT_EQ(manager.Next(), "READY=1");
    // The pauses are of 1, 2 and 4 seconds.
    auto last = std::chrono::steady_clock::now();
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(manager.Next(), "WATCHDOG=1");
        const auto now = std::chrono::steady_clock::now();
        EXPECT_LT(now - last, std::chrono::seconds(3));
        last = now;
    }
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentServiceTest, BadOptionsAreUsageErrors) {
    const std::pair<Lines, std::string> cases[] = {
        {{"--poll", "0"}, "--poll needs a number from 1 to 3600"},
        {{"--handler-timeout", "0"}, "--handler-timeout needs a number from 1 to 86400"},
        {{"--output-limit", "-1"}, "--output-limit needs a number from 0 to 16777216"},
    };
    for (const auto& [options, line] : cases) {
        Call call;
        call.arguments = {"agent", "--server", server, "--id", "P1"};
        call.arguments.insert(call.arguments.end(), options.begin(), options.end());
        call.arguments.insert(call.arguments.end(), {"--", "true"});
        EXPECT_EQ(RunTavo(call),
                  (Outcome{2, "", "tavo agent: " + line + "; see 'tavo agent --help'\n"}));
    }
    server = "h:99999";
    Start({}, "true");
    EXPECT_EQ(
        Finish(),
        (Outcome{2, "",
                 "tavo agent: 'h:99999' is not an address: curl_easy_perform returned 3 (URL "
                 "using bad/illegal format or missing URL); write it as HOST or HOST:PORT\n"}));
    EXPECT_EQ(
        RunTavo({"agent", "--server", server, "--id", "P1"}),
        (Outcome{2, "", "tavo agent: HANDLER is required, behind --; see 'tavo agent --help'\n"}));
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
