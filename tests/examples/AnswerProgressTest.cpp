#include "examples/ExampleTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class AnswerProgress : public ExampleTest {};

const std::string poll = "HTTP GET http://SERVER/xp?op=poll&id=P1&format=2&shutdown=true"
                         "&timeout=60000\n";
const std::string off = "HTTP GET http://SERVER/xp?op=off&id=P1\n";

/// A poll's reply with one command, whose tag is "t".
Script Command(const std::string& command) {
    return Reply(OkReply(R"({"commands":[{"id":"P1","command":"'t')" + command + "\"}]}"));
}

TEST_F(AnswerProgress, TellsHowFarItIsAndAnswersAtTheEnd) {
    const Simulator simulator(Folder());
    simulator.QueueCommand("P1", "t1", "survey 3");
    simulator.QueueCommand("P1", "t2", "dance");
    Program program = Start("answer_progress", {simulator.Address(), "P1"});
    EXPECT_EQ(program.ReadLine(), "t1: measured all 3");
    EXPECT_EQ(program.ReadLine(), "t2: unknown command: dance");
    simulator.AwaitHeldPolls(1);
    simulator.ShutDown("P1");
    const Outcome outcome = End(program, simulator.Address());
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, poll + poll + poll + off);
    EXPECT_EQ(simulator.Answers("P1"),
              (Lines{"t1: measured 1 of 3 (more follows)", "t1: measured 2 of 3 (more follows)",
                     "t1: measured all 3", "t2: unknown command: dance (failed)"}));
    EXPECT_EQ(simulator.Commands("P1"), (Lines{"t1: answered", "t2: answered"}));
    EXPECT_TRUE(simulator.Payload("P1")["off"].asBool());
}

TEST_F(AnswerProgress, SendsTheLastAnswerAgainUntilItIsTaken) {
    const ScriptedServer server({Command("survey 2"),
                                 {ReadRequest(), Reset()},
                                 {ReadRequest(), Reset()},
                                 Reply(OkReply("")),
                                 Reply(OkReply(R"({"shutdown":true})")),
                                 Reply(OkReply(""))});
    const Outcome outcome = Run("answer_progress", server.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, "t: measured all 2\n");
    EXPECT_EQ(outcome.errors, poll +
                                  "progress lost: curl_easy_perform returned 56 (Failure when "
                                  "receiving data from the peer)\n"
                                  "answer not sent: curl_easy_perform returned 56 (Failure when "
                                  "receiving data from the peer)\n" +
                                  poll + off);
    const Lines requests = server.Requests();
    ASSERT_EQ(requests.size(), 6U);
    EXPECT_EQ(requests[1].rfind("POST /xp?op=reply&id=P1&tag=t&complete=false HTTP", 0), 0U);
    for (const std::size_t i : {2U, 3U}) {
        EXPECT_EQ(requests[i].rfind("POST /xp?op=reply&id=P1&tag=t HTTP", 0), 0U) << requests[i];
    }
}

TEST_F(AnswerProgress, DoesNotRepeatWhatTheServerRefuses) {
    const ScriptedServer server(
        {Command("survey 1"), Reply("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n")});
    const Outcome outcome = Run("answer_progress", server.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.errors,
              poll + "answer_progress: For Respond to Command, the HTTP header did not return OK: "
                     "HTTP/1.1 404 Not Found\n");
}

TEST_F(AnswerProgress, TellsItsUsage) {
    ExpectUsage("answer_progress", "SERVER ID");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
