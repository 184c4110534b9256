#include "examples/ExampleTest.h"

#include <csignal>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class PollLoop : public ExampleTest {};

const std::string poll =
    "HTTP GET http://SERVER/xp?op=poll&id=P1&format=2&gps=true&shutdown=true&maxcommands=10"
    "&timeout=10000\n";
const std::string off = "HTTP GET http://SERVER/xp?op=off&id=P1\n";

TEST_F(PollLoop, AnswersEveryCommandAndShutsDown) {
    const Simulator simulator(Folder());
    simulator.Anchor(57.5, -3.25);
    simulator.QueueCommand("P1", "t1", "hello");
    simulator.QueueCommand("P1", "t2", "/etc/plan", true);
    simulator.ShutDown("P1");
    const Outcome outcome = Run("poll_loop", simulator.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, "command: hello\n"
                              "file: /etc/plan\n"
                              "position: 57.5 -3.25\n"
                              "shutting down\n");
    EXPECT_EQ(outcome.errors, poll + off);
    EXPECT_EQ(simulator.Answers("P1"), (Lines{"t1: done", "t2: done"}));
    EXPECT_EQ(simulator.Commands("P1"), (Lines{"t1: answered", "t2: answered"}));
    EXPECT_TRUE(simulator.Payload("P1")["off"].asBool());
}

TEST_F(PollLoop, SigtermStopsItBehindTheCommandThatComes) {
    const Simulator simulator(Folder());
    simulator.Anchor(57.5, -3.25);
    Program program = Start("poll_loop", {simulator.Address(), "P1"});
    EXPECT_EQ(program.ReadLine(), "position: 57.5 -3.25");
    simulator.AwaitHeldPolls(1);
    program.Signal(SIGTERM);
    simulator.QueueCommand("P1", "t1", "last one");
    const Outcome outcome = End(program, simulator.Address());
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, "command: last one\nposition: 57.5 -3.25\nstopped\n");
    EXPECT_EQ(outcome.errors, poll + poll);
    EXPECT_EQ(simulator.Answers("P1"), Lines{"t1: done"});
    EXPECT_FALSE(simulator.Payload("P1")["off"].asBool());
}

TEST_F(PollLoop, CarriesOnAfterEveryFailure) {
    const Script busy = Reply("HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n");
    const ScriptedServer server(
        {{ReadRequest(), Reset()},
         busy,
         Reply(OkReply(R"({"timeout":true})")),
         Reply(OkReply(R"({"commands":[{"id":"P1","command":"'a'one"},{"id":"P1"}]})")),
         busy,
         Reply(OkReply(R"({"gps":{"latitude":57.5,"longitude":-3.25,"timeFix":1700000000}})")),
         Reply(OkReply(R"({"gps":{"error":"no fix"},"shutdown":true})")),
         Reply(OkReply(""))});
    const Outcome outcome = Run("poll_loop", server.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, "command: one\n"
                              "position: 57.5 -3.25\n"
                              "no position: no fix\n"
                              "shutting down\n");
    EXPECT_EQ(outcome.errors,
              poll +
                  "poll failed, next in 250 ms: curl_easy_perform returned 56 (Failure when "
                  "receiving data from the peer)\n" +
                  poll +
                  "poll failed, next in 500 ms: For Poll, the HTTP header did not return OK: "
                  "HTTP/1.1 503 Busy\n" +
                  poll + poll +
                  "answer lost: For Respond to Command, the HTTP header did not return OK: "
                  "HTTP/1.1 503 Busy\n"
                  "poll failed, next in 250 ms: Missing string element 'cmd'\n" +
                  poll + poll + off);
}

TEST_F(PollLoop, GivesUpForAnAddressThatIsNone) {
    const Outcome outcome = Run("poll_loop", "no:where", {"P1"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, poll + "poll_loop: curl_easy_perform returned 3 (URL using "
                                     "bad/illegal format or missing URL)\n");
}

TEST_F(PollLoop, TellsItsUsage) {
    ExpectUsage("poll_loop", "SERVER ID");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
