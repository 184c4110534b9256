#include "RecordedSocket.h"

#include <Poco/Net/ServerSocketImpl.h>
#include <cerrno>
#include <sys/socket.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Poco::Net::SocketAddress;

class RecordingServerSocket : public Poco::Net::ServerSocketImpl {
public:
    explicit RecordingServerSocket(RecordedSocket::Leftover theLeftover)
        : leftover(std::move(theLeftover)) {}

    Poco::Net::SocketImpl* acceptConnection(SocketAddress& peer) override {
        for (;;) {
            sockaddr_storage storage{};
            socklen_t size = sizeof storage;
            auto* const address = reinterpret_cast<sockaddr*>(&storage);
            const int descriptor = accept4(sockfd(), address, &size, SOCK_CLOEXEC);
            if (descriptor >= 0) {
                peer = SocketAddress(address, size);
                return new RecordedSocket(descriptor, peer.toString(), leftover);
            }
            if (errno != EINTR) {
                error(); // throws
            }
        }
    }

private:
    const RecordedSocket::Leftover leftover;
};

/// The only way to give a ServerSocket another implementation.
class CustomServerSocket : public Poco::Net::ServerSocket {
public:
    explicit CustomServerSocket(Poco::Net::SocketImpl* implementation)
        : ServerSocket(implementation, /* ignored = */ true) {}
};

} // namespace

RecordedSocket::RecordedSocket(poco_socket_t descriptor, std::string thePeer,
                               const Leftover& theLeftover)
    : StreamSocketImpl(descriptor), peer(std::move(thePeer)), leftover(theLeftover) {}

RecordedSocket::~RecordedSocket() {
    if (!taken && recording->ReceivedCount() > 0) {
        leftover(peer, recording);
    }
}

int RecordedSocket::sendBytes(const void* buffer, int length, int flags) {
    const auto count = static_cast<std::size_t>(length);
    recording->AddSent(static_cast<const char*>(buffer), count);
    int sent = 0;
    try {
        sent = StreamSocketImpl::sendBytes(buffer, length, flags);
    } catch (...) {
        recording->RemoveSent(count);
        throw;
    }
    recording->RemoveSent(count - static_cast<std::size_t>(sent));
    return sent;
}

int RecordedSocket::receiveBytes(void* buffer, int length, int flags) {
    const int received = StreamSocketImpl::receiveBytes(buffer, length, flags);
    if (received > 0 && (flags & MSG_PEEK) == 0) {
        recording->AddReceived(static_cast<const char*>(buffer),
                               static_cast<std::size_t>(received));
    }
    return received;
}

std::shared_ptr<const Recording> RecordedSocket::TakeRecording() {
    taken = true;
    return recording;
}

void RecordedSocket::NextExchange() {
    recording = std::make_shared<Recording>();
    taken = false;
    used = true;
}

bool RecordedSocket::IsUsed() const {
    return used;
}

Poco::Net::ServerSocket ListenRecorded(const std::string& address, std::uint16_t port, int backlog,
                                       const RecordedSocket::Leftover& leftover) {
    CustomServerSocket socket(new RecordingServerSocket(leftover));
    // Without reusePort: two simulators on one port would share its connections unnoticed.
    socket.bind(SocketAddress(address, port), /* reuseAddress = */ true, /* reusePort = */ false);
    socket.listen(backlog);
    return std::move(socket);
}

} // namespace TavoSimulator
} // namespace Brenmoor
