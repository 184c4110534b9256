#include "RecordedSocket.h"
#include "WaitingRoom.h"

#include <Poco/Exception.h>
#include <Poco/Net/ServerSocketImpl.h>
#include <optional>
#include <sys/socket.h>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Poco::Net::SocketAddress;

// Those that lie there idle; the limit of descriptors is this program's own.
constexpr std::size_t mostIdle = 4096;

class RecordingServerSocket : public Poco::Net::ServerSocketImpl {
public:
    explicit RecordingServerSocket(Listening theListening) : listening(std::move(theListening)) {}

    void Open() {
        // Without reusePort: two simulators on one port would share its connections unnoticed.
        const SocketAddress address(listening.address, listening.port);
        // cppcheck-suppress invalidFunctionArgBool ; this is not the system call
        bind(address, /* reuseAddress = */ true, /* reusePort = */ false);
        listen(listening.backlog);
        setBlocking(false);
        room.emplace(sockfd(), mostIdle, listening.longestIdle, listening.busy);
    }

    bool poll(const Poco::Timespan& timeout, int) override {
        return room->Await(std::chrono::milliseconds(timeout.totalMilliseconds()));
    }

    Poco::Net::SocketImpl* acceptConnection(SocketAddress& peer) override {
        const int descriptor = room->Take();
        if (descriptor < 0) {
            throw Poco::TimeoutException();
        }
        sockaddr_storage storage{};
        socklen_t size = sizeof storage;
        auto* const address = reinterpret_cast<sockaddr*>(&storage);
        // Not of one that has already gone.
        if (getpeername(descriptor, address, &size) == 0) {
            peer = SocketAddress(address, size);
        }
        return new RecordedSocket(descriptor, peer.toString(), listening.leftover,
                                  listening.longestHead);
    }

private:
    const Listening listening;
    std::optional<WaitingRoom> room;
};

/// The only way to give a ServerSocket another implementation.
class CustomServerSocket : public Poco::Net::ServerSocket {
public:
    explicit CustomServerSocket(Poco::Net::SocketImpl* implementation)
        : ServerSocket(implementation, /* ignored = */ true) {}
};

} // namespace

RecordedSocket::RecordedSocket(poco_socket_t descriptor, std::string thePeer,
                               const Leftover& theLeftover,
                               std::chrono::milliseconds theLongestHead)
    : StreamSocketImpl(descriptor), peer(std::move(thePeer)), leftover(theLeftover),
      longestHead(theLongestHead) {}

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

void RecordedSocket::RequireHaste() {
    headBegin = headBegin.value_or(Real::now());
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
        *headBegin + longestHead - Real::now());
    if (left.count() <= 0 || !poll(Poco::Timespan(left.count()), SELECT_READ)) {
        throw Poco::TimeoutException("the head of a request took too long");
    }
}

int RecordedSocket::receiveBytes(void* buffer, int length, int flags) {
    if (!taken && (flags & MSG_PEEK) == 0) {
        RequireHaste();
    }
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
    headBegin.reset();
    taken = false;
    used = true;
}

bool RecordedSocket::IsUsed() const {
    return used;
}

void RecordedSocket::Keep(std::shared_ptr<void> something) {
    kept = std::move(something);
}

Poco::Net::ServerSocket ListenRecorded(const Listening& listening) {
    auto* const implementation = new RecordingServerSocket(listening);
    CustomServerSocket socket(implementation);
    implementation->Open();
    return socket;
}

} // namespace TavoSimulator
} // namespace Brenmoor
