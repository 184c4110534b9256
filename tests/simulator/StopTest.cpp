#include "support/ProcessTest.h"

#include <Poco/Net/NetException.h>
#include <algorithm>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

/// What a stop finds under way.
class StopTest : public ProcessTest {
protected:
    StopTest() {
        std::filesystem::create_directory(scripts);
        WriteFile(scripts + "/slow", "#!/bin/sh\n: >../begun\nexec sleep 1000\n");
        std::filesystem::permissions(scripts + "/slow", std::filesystem::perms::owner_all);
        WriteFile(folder.path + "/s.json", R"({"end": {"at": 1e6}, "expect": [
            {"name": "a poll has ended", "exchanges": {"operation": "poll"}}]})");
    }

    const std::string scripts = folder.path + "/scripts";
    const std::string journal = folder.path + "/journal";
};

TEST_F(StopTest, EndsAScenarioAPollAFaultAScriptAndAnUploadAtOnce) {
    Process process(Arguments({"--quiet", "--scenario", folder.path + "/s.json", "--journal",
                               journal, "--allow-scripts", scripts}));
    const std::uint16_t port = AwaitPort(process);
    Exchange(port, PostText("/sim/v1/faults", "application/json",
                            R"({"fault": "silence", "operation": "off"})"));
    Connection poll(port);
    poll.Send(GetText("/xp?op=poll&id=P1&format=2&timeout=3600000"));
    Connection silent(port);
    silent.Send(GetText("/xp?op=off&id=P1"));
    Connection script(port);
    script.Send(GetText("/xp?op=script&id=P1&cmd=slow"));
    Connection upload(port);
    const std::string form = UploadText("/xp?op=upload&id=P1", "content", "n");
    upload.Send(form.substr(0, form.size() - 20));
    AwaitHeldPolls(port, 1);
    while (!std::filesystem::exists(folder.path + "/begun") ||
           BodyOf(Exchange(port, GetText("/sim/v1/faults"))).find("\"armed\":[]") ==
               std::string::npos) {
        std::this_thread::yield();
    }
    const Clock clock;
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 3);
    EXPECT_LT(clock.Seconds(), 10);
    EXPECT_EQ(process.RestOfOutput(), "not met: a poll has ended: there were 0\n"
                                      "scenario: 0 of 1 expectations met\n"
                                      "scenario: ended by a signal\n");
    EXPECT_EQ(process.Errors(), "");
    EXPECT_EQ(silent.ReadAll(), "");
    EXPECT_EQ(BodyOf(script.ReadAll()), "The script was killed: the server is going down\n");
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
    const std::string lines = ReadFile(journal);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 4);
    EXPECT_EQ(lines.back(), '\n');
}

TEST_F(StopTest, BindsToTheAddressAlone) {
    Process process({"--port", "0", "--bind", "127.0.0.2", "--data", folder.path + "/data",
                     "--port-file", folder.path + "/port"});
    const std::string line = process.ReadLine();
    std::string port = ReadFile(folder.path + "/port");
    port.pop_back();
    EXPECT_EQ(line, "tavo-simulator " TAVO_VERSION " listens on 127.0.0.2 port " + port +
                        " and keeps uploads in " + folder.path + "/data");
    const auto number = static_cast<std::uint16_t>(std::stoi(port));
    EXPECT_THROW(Connection{number}, Poco::Net::ConnectionRefusedException);
    EXPECT_NO_THROW(Poco::Net::StreamSocket(Poco::Net::SocketAddress("127.0.0.2", number)));
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
