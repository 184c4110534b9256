#pragma once

#include <string>
#include <sys/types.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

/// A payload server in a process of its own, so that it holds nothing of the watched one. A payload
/// whose identifier is the name of one of the simulator's faults gets that, and `healthyPayload` a
/// good reply.
class FaultyServer {
public:
    static constexpr const char* healthyPayload = "P1";

    /// Start it before any thread.
    FaultyServer();
    FaultyServer(const FaultyServer&) = delete;
    FaultyServer& operator=(const FaultyServer&) = delete;
    ~FaultyServer();

    /// "127.0.0.1:" and the port.
    std::string Address() const;

private:
    pid_t process = 0;
    unsigned short port = 0;
};

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
