#include "examples/ExampleTest.h"

#include <memory>
#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using ::testing::UnorderedElementsAreArray;

class SharedClient : public ExampleTest {};

Lines LinesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

const std::string poll =
    "HTTP GET http://SERVER/xp?op=poll&id=P1&format=2&shutdown=true&maxcommands=10&timeout=60000";
const std::string off = "HTTP GET http://SERVER/xp?op=off&id=P1";

TEST_F(SharedClient, DoesEveryCommandOnceAndWritesWholeLines) {
    const Simulator simulator(Folder());
    Lines output = {poll, off};
    Lines answers;
    Lines commands;
    for (int i = 0; i < 10; ++i) {
        const std::string tag = "t" + std::to_string(i);
        simulator.QueueCommand("P1", tag, "command " + std::to_string(i));
        output.push_back("done: command " + std::to_string(i));
        answers.push_back(tag + ": done: command " + std::to_string(i));
        commands.push_back(tag + ": answered");
    }
    simulator.ShutDown("P1");
    const Outcome outcome = Run("shared_client", simulator.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(LinesOf(outcome.output), UnorderedElementsAreArray(output));
    EXPECT_EQ(LinesOf(outcome.output).front(), poll);
    EXPECT_EQ(LinesOf(outcome.output).back(), off);
    EXPECT_THAT(simulator.Answers("P1"), UnorderedElementsAreArray(answers));
    EXPECT_EQ(simulator.Commands("P1"), commands);
    EXPECT_TRUE(simulator.Payload("P1")["off"].asBool());
}

/// The answer and the next poll are both left without a reply: neither waits for the other.
TEST_F(SharedClient, PollsWhileACommandIsAnswered) {
    auto server = std::make_unique<ScriptedServer>(
        std::vector<Script>{Reply(OkReply(R"({"commands":[{"id":"P1","command":"'t'one"}]})")),
                            {ReadRequest(), Stall()}});
    Program program = Start("shared_client", {server->Address(), "P1"});
    server->WaitForConnections(3);
    server.reset();
    EXPECT_EQ(program.Wait(), 1);
}

TEST_F(SharedClient, TellsAnAnswerThatWasNotTakenAndCarriesOn) {
    const ScriptedServer server(
        {Reply(OkReply(R"({"commands":[{"id":"P1","command":"'t'one"}],"shutdown":true})")),
         Reply("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"), Reply(OkReply(""))});
    const Outcome outcome = Run("shared_client", server.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, poll +
                                  "\nfailed: one: For Respond to Command, the HTTP header did not "
                                  "return OK: HTTP/1.1 404 Not Found\n" +
                                  off + "\n");
}

TEST_F(SharedClient, EndsWhenAPollFails) {
    const ScriptedServer server("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    const Outcome outcome = Run("shared_client", server.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.errors, "shared_client: For Poll, the HTTP header did not return OK: "
                              "HTTP/1.1 404 Not Found\n");
}

TEST_F(SharedClient, TellsItsUsage) {
    ExpectUsage("shared_client", "SERVER ID");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
