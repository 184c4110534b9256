#include "support/ProcessTest.h"
#include "support/ResourceLimit.h"

#include <Poco/Net/ServerSocket.h>
#include <algorithm>
#include <csignal>
#include <memory>
#include <optional>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

TEST_F(ProcessTest, ServesWritesALineForEachExchangeAndEndsOnSigterm) {
    WriteFile(folder.path + "/port", "left by an earlier run");
    Process process(Arguments());
    const std::uint16_t port = AwaitPort(process);
    EXPECT_EQ(Exchange(port, GetText("/xp?op=off&id=p1")), okReply);
    const std::string line = process.ReadLine();
    const std::string size = std::to_string(GetText("/xp?op=off&id=p1").size());
    EXPECT_NE(line.find(" GET /xp?op=off&id=p1 (" + size + " bytes) -> 200 OK ("),
              std::string::npos)
        << line;
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(process.RestOfOutput(), "");
    EXPECT_EQ(process.Errors(), "");
    EXPECT_EQ(Entries(folder.path), (std::vector<std::string>{"data", "port"}));
}

TEST_F(ProcessTest, QuietWritesNoLines) {
    Process process(Arguments({"--quiet"}));
    const std::uint16_t port = AwaitPort(process);
    EXPECT_EQ(Exchange(port, GetText("/xp?op=off&id=p1")), okReply);
    process.Signal(SIGINT);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(process.RestOfOutput(), "");
}

TEST_F(ProcessTest, EndsQuicklyWhilePollsAreHeldAndAnUploadStalls) {
    Process process(Arguments({"--quiet"}));
    const std::uint16_t port = AwaitPort(process);
    Connection idle(port);
    Connection stalled(port);
    const std::string upload = UploadText("/xp?op=upload&id=p1", "content", "n");
    stalled.Send(upload.substr(0, upload.size() - 20));
    std::vector<std::unique_ptr<Connection>> polls;
    for (int i = 0; i < 50; ++i) {
        polls.push_back(std::make_unique<Connection>(port));
        polls.back()->Send(GetText("/xp?op=poll&id=p1&format=2&timeout=3600000"));
    }
    AwaitHeldPolls(port, polls.size());
    const Clock clock;
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_LT(clock.Seconds(), 10);
    EXPECT_EQ(process.Errors(), "");
    for (const auto& poll : polls) {
        EXPECT_EQ(poll->ReadAll(),
                  ReplyText("503 Service Unavailable", "text/plain", "The server is going down\n"));
    }
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
}

TEST_F(ProcessTest, AnUploadThatNoFileMayHoldIsRefused) {
    // The program keeps it.
    std::optional<TavoRemotingLib::Testing::ResourceLimit> limit(std::in_place, RLIMIT_FSIZE,
                                                                 10000U);
    Process process(Arguments({"--quiet"}));
    limit.reset();
    const std::uint16_t port = AwaitPort(process);
    EXPECT_EQ(
        Exchange(port, UploadText("/xp?op=upload&id=p1", std::string(100000, 'x'), "n")),
        ReplyText("500 Internal Server Error", "text/plain", "The upload could not be written\n"));
    EXPECT_EQ(Exchange(port, GetText("/xp?op=off&id=p1")), okReply);
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
}

TEST_F(ProcessTest, NothingTakesThePlaceOfAMissingStandardStream) {
    const std::string journal = folder.path + "/journal";
    TavoRemotingLib::Testing::Program shell(TavoRemotingLib::Testing::Redirected(
        ">&-", SIMULATOR_PATH, Arguments({"--journal", journal})));
    while (!std::filesystem::exists(folder.path + "/port")) {
        std::this_thread::yield();
    }
    const auto port = static_cast<std::uint16_t>(std::stoi(ReadFile(folder.path + "/port")));
    EXPECT_EQ(Exchange(port, GetText("/xp?op=off&id=p1")), okReply);
    shell.Signal(SIGTERM);
    EXPECT_EQ(shell.Wait(), 0);
    const std::string lines = ReadFile(journal);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 1) << lines;
    EXPECT_EQ(ParsedJson(lines)["target"].asString(), "/xp?op=off&id=p1");
}

TEST_F(ProcessTest, HelpAndVersion) {
    Process help({"--help"});
    EXPECT_EQ(help.Wait(), 0);
    const std::string text = help.RestOfOutput();
    const char codes[] = "Exit codes:\n  0  ended by SIGINT or SIGTERM, or the scenario is met\n"
                         "  1  a failure, such as a port that is taken\n"
                         "  2  bad options, or a mistake in a file that they name\n"
                         "  3  the scenario is not met, or was ended by a signal\n";
    for (const char* const option :
         {"Usage: tavo-simulator [OPTIONS]", "--port N", "--bind,--address A", "--data DIR",
          "--port-file FILE", "--quiet", "--scenario FILE", "--journal FILE", "--replay FILE",
          "--allow-scripts DIR", "--script-timeout SECONDS", "--help", "--version", codes}) {
        EXPECT_NE(text.find(option), std::string::npos) << option;
    }
    Process version({"--version"});
    EXPECT_EQ(version.Wait(), 0);
    EXPECT_EQ(version.RestOfOutput(), "tavo-simulator " TAVO_VERSION "\n");
}

TEST_F(ProcessTest, BadOptionsAreOneLineAndExitCodeTwo) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--port", "70000"}, "Could not convert: --port = 70000; see --help"},
        {{"--port"}, "--port: 1 required N missing; see --help"},
        {{"--bogus"}, "The following argument was not expected: --bogus; see --help"},
        {{"--address", "nowhere"}, "--bind: not an IP address: nowhere; see --help"},
    };
    for (const auto& [arguments, line] : cases) {
        Process process(arguments);
        EXPECT_EQ(process.Wait(), 2);
        EXPECT_EQ(process.RestOfOutput(), "");
        EXPECT_EQ(process.Errors(), "tavo-simulator: " + line + "\n");
    }
}

TEST_F(ProcessTest, FailuresAreOneLineAndExitCodeOne) {
    Poco::Net::ServerSocket taken(Poco::Net::SocketAddress("127.0.0.1", 0));
    const std::string port = std::to_string(taken.address().port());
    WriteFile(folder.path + "/port", "left by an earlier run");
    Process clash({"--port", port, "--data", folder.path, "--port-file", folder.path + "/port"});
    EXPECT_EQ(clash.Wait(), 1);
    const std::string line = clash.Errors();
    EXPECT_EQ(line.rfind("tavo-simulator: ", 0), 0U) << line;
    EXPECT_NE(line.find("127.0.0.1:" + port), std::string::npos) << line;
    EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
    EXPECT_EQ(Entries(folder.path), std::vector<std::string>{});

    WriteFile(folder.path + "/file", "");
    Process noFolder({"--port", "0", "--data", folder.path + "/file"});
    EXPECT_EQ(noFolder.Wait(), 1);
    EXPECT_NE(noFolder.Errors().find(folder.path + "/file"), std::string::npos);

    Process noPortFile({"--port", "0", "--data", folder.path, "--port-file", folder.path + "/a/b"});
    EXPECT_EQ(noPortFile.Wait(), 1);
    EXPECT_EQ(noPortFile.Errors(),
              "tavo-simulator: cannot write the port file '" + folder.path + "/a/b'\n");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
