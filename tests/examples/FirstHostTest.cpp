#include "examples/ExampleTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class FirstHost : public ExampleTest {};

TEST_F(FirstHost, AnswersEveryCommandAndTurnsThePayloadOff) {
    const Simulator simulator(Folder());
    simulator.QueueCommand("P1", "t1", "hello");
    simulator.ShutDown("P1");
    const Outcome outcome = Run("first_host", simulator.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, "command: hello\n");
    EXPECT_EQ(outcome.errors,
              "HTTP GET http://SERVER/xp?op=poll&id=P1&format=2&shutdown=true&maxcommands=10"
              "&timeout=60000\nHTTP GET http://SERVER/xp?op=off&id=P1\n");
    EXPECT_EQ(simulator.Answers("P1"), Lines{"t1: done"});
    EXPECT_TRUE(simulator.Payload("P1")["off"].asBool());
}

TEST_F(FirstHost, EndsWithTheFailure) {
    const ScriptedServer server("HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n");
    const Outcome outcome = Run("first_host", server.Address(), {"P1"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "HTTP GET http://SERVER/xp?op=poll&id=P1&format=2&shutdown=true&maxcommands=10"
              "&timeout=60000\n"
              "For Poll, the HTTP header did not return OK: HTTP/1.1 503 Busy\n");
}

TEST_F(FirstHost, TellsItsUsage) {
    ExpectUsage("first_host", "SERVER ID");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
