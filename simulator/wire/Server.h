#pragma once

#include "LineOutput.h"
#include "model/World.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Serves a world over HTTP, one thread for each connection. It listens when the constructor
/// returns, and nothing touches the world any more when the destructor does.
class Server {
public:
    /// Port 0 takes any free one. Every exchange is written to `lines`, if it is not null, as one
    /// line. Throws Poco::Exception when the address cannot be listened on.
    Server(World& world, const std::string& address, std::uint16_t port, LineOutput* lines);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    /// Ends held polls with "503 Service Unavailable" and every other exchange by hanging up.
    ~Server();

    std::uint16_t Port() const;

private:
    class Implementation;

    const std::unique_ptr<Implementation> implementation;
};

} // namespace TavoSimulator
} // namespace Brenmoor
