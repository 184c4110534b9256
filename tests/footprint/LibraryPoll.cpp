#include "LibraryClient.h"
#include "Operation.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

void Poll(const Call& call) {
    SilentLogger logger;
    HalcyrREST client(call.server, logger, false);
    std::vector<std::string> ids = {call.id};
    std::vector<HalcyrREST::RemoteCommand> commands;
    HalcyrREST::GPSInfo gps;
    HalcyrREST::ShutdownInfo shutdown;
    client.Poll(ids, &commands, &gps, &shutdown, 1000, 10);
}

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
