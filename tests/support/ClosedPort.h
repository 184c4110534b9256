#pragma once

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A port of the loopback interface that refuses connections. It is held, but nobody listens, so
/// that no other process can open it meanwhile.
class ClosedPort {
public:
    ClosedPort() : holder(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        const auto generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(holder, generic, size) != 0 || getsockname(holder, generic, &size) != 0) {
            throw std::system_error(errno, std::generic_category(), "bind");
        }
        port = ntohs(address.sin_port);
    }
    ClosedPort(const ClosedPort&) = delete;
    ClosedPort& operator=(const ClosedPort&) = delete;
    ~ClosedPort() {
        close(holder);
    }

    /// "127.0.0.1:" and the port.
    std::string Address() const {
        return "127.0.0.1:" + std::to_string(port);
    }

private:
    const int holder;
    unsigned short port = 0;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
