#pragma once

#include "HalcyrREST/ClientTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A test of the poll, with results as an earlier poll left them.
class PollTest : public ClientTest {
protected:
    using Commands = std::vector<HalcyrREST::RemoteCommand>;

    PollTest() {
        commands.emplace_back(R"({"id":"old","command":"'old'old"})");
        gps =
            HalcyrREST::GPSInfo(R"({"error":"old","latitude":1.5,"longitude":2.5,"timeFix":3.5})");
        shutdown.requested = true;
    }

    /// Polls for what is not null; the server answers with that body.
    void PollFor(Commands* wantedCommands, HalcyrREST::GPSInfo* wantedGps,
                 HalcyrREST::ShutdownInfo* wantedShutdown, const std::string& body) {
        const ScriptedServer server(OkReply(body));
        HalcyrREST(server.Address(), logger, false)
            .Poll(ids, wantedCommands, wantedGps, wantedShutdown, 0, 1000);
    }

    /// Polls for everything.
    void Poll(const std::string& body) {
        PollFor(&commands, &gps, &shutdown, body);
    }

    /// The commands held, each as "id|tag|command".
    std::vector<std::string> HeldCommands() const {
        std::vector<std::string> held;
        for (const HalcyrREST::RemoteCommand& command : commands) {
            held.push_back(command.id + "|" + command.tag + "|" + command.command);
        }
        return held;
    }

    /// Expects that nothing is held and no flag set.
    void ExpectCleared() const {
        EXPECT_EQ(HeldCommands(), std::vector<std::string>());
        EXPECT_FALSE(gps.received);
        EXPECT_FALSE(shutdown.requested);
    }

    /// Expects the values of the earlier poll in the position, besides its flag `received`.
    void ExpectOldPosition() const {
        EXPECT_TRUE(gps.hasError);
        EXPECT_EQ(gps.errorText, "old");
        EXPECT_EQ(gps.latitude, 1.5);
        EXPECT_EQ(gps.longitude, 2.5);
        EXPECT_EQ(gps.timeFix, 3.5);
    }

    std::vector<std::string> ids = {"P1"};
    Commands commands;
    HalcyrREST::GPSInfo gps;
    HalcyrREST::ShutdownInfo shutdown;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
