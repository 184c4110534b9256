// Any text as the body of a poll's reply, over a real connection.

#include "Fuzz.h"
#include "support/ReplyServer.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

struct Results {
    std::vector<HalcyrREST::RemoteCommand> commands;
    HalcyrREST::GPSInfo gps;
    HalcyrREST::ShutdownInfo shutdown;

    bool IsAnswered() const {
        return !commands.empty() || gps.received || shutdown.requested;
    }
};

/// Polls for everything; true when there is a result.
bool Poll(HalcyrREST& client, Results& results, bool isEmpty) {
    std::vector<std::string> ids = {"P1"};
    try {
        client.Poll(ids, &results.commands, &results.gps, &results.shutdown, 1000, 100);
        return true;
    } catch (const HalcyrREST::EmptyCommandException&) {
        Require(isEmpty && !results.IsAnswered(), "an empty body gives nothing");
    } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
        Require(!results.IsAnswered(), "a poll whose time has passed gives nothing");
    } catch (const std::exception&) {
        Require(!isEmpty, "an empty body has its own exception");
        Require(!results.shutdown.requested, "a failed poll does not shut down");
    }
    return false;
}

} // namespace

void Try(const std::string& input) {
    static Testing::ReplyServer server;
    server.Serve("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(input.size()) + "\r\n\r\n" +
                 input);
    std::ostringstream log;
    MirrinFramework::Logger logger(log, 8);
    HalcyrREST client(server.Address(), logger, false);
    Require(client.RunScript("P1", "c") == input, "a body arrives as it was sent");
    Results results;
    // As an earlier poll may have left it.
    results.shutdown.requested = true;
    if (Poll(client, results, input.empty())) {
        Require(results.IsAnswered(), "a poll that returns has a result");
    }
    for (const HalcyrREST::RemoteCommand& command : results.commands) {
        RequireTag(command.tag);
    }
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
