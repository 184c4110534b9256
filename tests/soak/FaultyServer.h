#pragma once

#include <string>
#include <sys/types.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

/// A payload server in a process of its own, so that it holds nothing of the watched one. One reply
/// in `faultPeriod` goes wrong, in each of the simulator's ways in turn but those which only the
/// client's time limit ends.
class FaultyServer {
public:
    static constexpr unsigned long faultPeriod = 16;

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
