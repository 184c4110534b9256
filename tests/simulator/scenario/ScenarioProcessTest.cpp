#include "support/ProcessTest.h"

#include <Poco/Net/NetException.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class ScenarioProcessTest : public ProcessTest {
protected:
    std::vector<std::string> Playing(const std::string& scenario,
                                     std::vector<std::string> more = {}) const {
        WriteFile(folder.path + "/s.json", scenario);
        more.insert(more.end(), {"--quiet", "--scenario", folder.path + "/s.json"});
        return Arguments(more);
    }

    static void AskForEver(std::uint16_t port) {
        for (;;) {
            Exchange(port, GetText("/sim/v1/state"));
        }
    }

    static std::string Reply(const std::string& tag, const std::string& text) {
        return UploadText("/xp?op=reply&id=P1&tag=" + tag, text + std::string(1, '\0'), "f");
    }
};

TEST_F(ScenarioProcessTest, EndsWithZeroOnceAllIsMet) {
    Process process(Playing(R"({
        "start": 1000,
        "steps": [{"at": 0, "commands": {"id": "P1", "tag": "t1", "command": "status"}},
                  {"at": 0, "faults": {"fault": "status-404", "operation": "off"}}],
        "end": {"whenMet": true},
        "expect": [
            {"name": "the status is answered", "command": {"id": "P1", "tag": "t1", "text": "well"}},
            {"name": "the fault has hit", "fault": {"name": "status-404"}},
            {"exchanges": {"count": 3}}
        ]
    })"));
    const std::uint16_t port = AwaitPort(process);
    EXPECT_EQ(BodyOf(Exchange(port, GetText("/xp?op=poll&id=P1&format=2&timeout=60000"))),
              "{\"commands\":[{\"command\":\"'t1'status\",\"id\":\"P1\"}]}\n");
    EXPECT_EQ(StatusLine(Exchange(port, GetText("/xp?op=off&id=P1"))), "HTTP/1.1 404 Not Found");
    EXPECT_EQ(Exchange(port, Reply("t1", "well")), okReply);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(process.RestOfOutput(), "met: the status is answered\n"
                                      "met: the fault has hit\n"
                                      "met: expect[2]: {\"exchanges\":{\"count\":3}}\n"
                                      "scenario: 3 of 3 expectations met\n");
    EXPECT_EQ(process.Errors(), "");
}

TEST_F(ScenarioProcessTest, ItsVerdictWaitsForWhoeverReadsIt) {
    WriteFile(folder.path + "/s.json", R"({
        "end": {"whenMet": true},
        "expect": [{"name": "all", "exchanges": {"atLeast": 30}}]
    })");
    Process process(Arguments({"--scenario", folder.path + "/s.json"}));
    const std::uint16_t port = AwaitPort(process);
    // More than a pipe holds.
    const std::string request = GetText("/xp?op=off&id=" + std::string(4000, 'x'));
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(Exchange(port, request), okReply);
    }
    EXPECT_THROW(AskForEver(port), Poco::Net::NetException) << "it is over, and so is the server";
    const std::string text = process.RestOfOutput();
    const std::string end = ")\nmet: all\nscenario: 1 of 1 expectations met\n";
    EXPECT_NE(text.find("\n(lines left out, since nobody read them: "), std::string::npos);
    EXPECT_EQ(text.substr(text.size() - std::min(text.size(), end.size())), end);
    EXPECT_EQ(process.Wait(), 0);
}

TEST_F(ScenarioProcessTest, EndsWithThreeWhenItsTimeIsUpAndSomethingIsMissing) {
    // An hour of the scenario's time, in a third of a second.
    Process process(Playing(R"({
        "speed": 10000,
        "steps": [{"at": 3600, "commands": {"id": "P1", "tag": "t1", "command": "status"}}],
        "end": {"at": 3601, "whenMet": true},
        "expect": [{"name": "an answer", "command": {"id": "P1", "tag": "t1"}}, {"noFlags": {}}]
    })"));
    AwaitPort(process);
    EXPECT_EQ(process.Wait(), 3);
    EXPECT_EQ(process.RestOfOutput(), "not met: an answer: it is queued, but not delivered\n"
                                      "met: expect[1]: {\"noFlags\":{}}\n"
                                      "scenario: 1 of 2 expectations met\n");
    EXPECT_EQ(process.Errors(), "");
}

TEST_F(ScenarioProcessTest, ASignalBeforeTheEndIsThreeEvenIfAllIsMet) {
    Process process(Playing(R"({"end": {"at": 3600}, "expect": [{"noFlags": {}}]})"));
    AwaitPort(process);
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 3);
    EXPECT_EQ(process.RestOfOutput(), "met: expect[0]: {\"noFlags\":{}}\n"
                                      "scenario: 1 of 1 expectations met\n"
                                      "scenario: ended by a signal\n");
}

TEST_F(ScenarioProcessTest, TheCommandLinesSpeedWins) {
    Process process(Playing(R"({"speed": 0, "end": {"at": 3600}, "expect": [{"noFlags": {}}]})",
                            {"--speed", "100000"}));
    AwaitPort(process);
    EXPECT_EQ(process.Wait(), 0);
}

TEST_F(ScenarioProcessTest, AMistakeIsOneLineAndExitCodeTwoAndNothingIsMade) {
    Process process(Playing(R"({"steps": [{"at": 1, "shutdown": {"inSeconds": 1}}],
                                "end": {"at": 3600}, "expect": [{"noFlags": {}}]})"));
    EXPECT_EQ(process.Wait(), 2);
    EXPECT_EQ(process.RestOfOutput(), "");
    EXPECT_EQ(process.Errors(), "tavo-simulator: " + folder.path +
                                    "/s.json: steps[0].shutdown: Member 'id' must be a string\n");
    EXPECT_EQ(Entries(folder.path), std::vector<std::string>{"s.json"});
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
