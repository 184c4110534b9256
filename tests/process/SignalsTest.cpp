// Signals arriving all the time do not disturb an operation.

#include "OperationsTest.h"
#include "support/Alarms.h"

#include <optional>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

constexpr suseconds_t everyMillisecond = 1000;

class Signals : public OperationsTest, public ::testing::WithParamInterface<int> {
protected:
    /// A server whose threads get none of the signals.
    static void Start(std::optional<ScriptedServer>& server, const Script& script) {
        const WithoutAlarms inherited;
        server.emplace(script);
    }
};

INSTANTIATE_TEST_SUITE_P(With, Signals, ::testing::Values(0, SA_RESTART),
                         [](const ::testing::TestParamInfo<int>& flags) {
                             return flags.param == 0 ? "Interruption" : "Restart";
                         });

TEST_P(Signals, DoNotDisturbAnyOperation) {
    const Alarms alarms(GetParam());
    for (const Operation& operation : Operations()) {
        // The reply takes its time, so that each step of the exchange is met.
        const std::string reply = OkReply(operation.ReplyBody());
        std::optional<ScriptedServer> server;
        Start(server,
              {ReadRequest(), Pause(std::chrono::milliseconds(20)), Send(reply.substr(0, 10)),
               Pause(std::chrono::milliseconds(20)), Send(reply.substr(10))});
        const int before = Alarms::Count();
        Alarms::Start(everyMillisecond);
        for (int i = 0; i < 5; ++i) {
            ExpectWorks(operation, *server);
        }
        EXPECT_GE(Alarms::Count() - before, 20) << operation.name;
    }
}

TEST_P(Signals, DoNotDisturbLargeTransfers) {
    const Alarms alarms(GetParam());
    const std::string large(4194304, 'x');
    const std::string largeFile = MakeFile("large", large);
    std::optional<ScriptedServer> server;
    Start(server, Reply(OkReply(large)));
    HalcyrREST client(server->Address(), logger, false);
    Alarms::Start(everyMillisecond);
    EXPECT_TRUE(client.RunScript("P1", "c") == large);
    EXPECT_NO_THROW(client.SendRawPacketToShore("P1", large));
    EXPECT_NO_THROW(client.SendFileToShore("P1", largeFile, ""));
    EXPECT_NE(server->Requests().at(1).find(large), std::string::npos);
    EXPECT_NE(server->Requests().at(2).find(large), std::string::npos);
    EXPECT_GE(Alarms::Count(), 20);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
