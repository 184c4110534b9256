#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A listener on the loopback interface that has as many connections waiting as it may have, so
/// that it answers no further one.
class FullListener {
public:
    FullListener() : listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        const auto generic = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(listener, generic, size), 0);
        EXPECT_EQ(listen(listener, 0), 0);
        EXPECT_EQ(getsockname(listener, generic, &size), 0);
        waiting = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(connect(waiting, generic, size), 0);
    }
    FullListener(const FullListener&) = delete;
    FullListener& operator=(const FullListener&) = delete;
    ~FullListener() {
        close(waiting);
        close(listener);
    }

    /// "127.0.0.1:" and the port.
    std::string Address() const {
        return "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }

private:
    const int listener;
    int waiting = -1;
    sockaddr_in address = {};
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
