#pragma once

#include "Recording.h"

#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/StreamSocketImpl.h>
#include <functional>
#include <memory>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// A connection whose bytes are recorded. The connection's thread uses it; the recordings that it
/// gives out may be read by any.
class RecordedSocket : public Poco::Net::StreamSocketImpl {
public:
    /// Called with the peer and the recording of a connection on which bytes came that no exchange
    /// took over: whatever they were, they were no HTTP request.
    using Leftover = std::function<void(const std::string& peer,
                                        const std::shared_ptr<const Recording>& recording)>;

    RecordedSocket(poco_socket_t descriptor, std::string peer, const Leftover& leftover);

    int sendBytes(const void* buffer, int length, int flags) override;
    int receiveBytes(void* buffer, int length, int flags) override;

    /// What was recorded since the connection began or NextExchange was called. The exchange that
    /// asks takes it over.
    std::shared_ptr<const Recording> TakeRecording();

    /// Begins a new recording. Of requests that are sent without waiting for the reply to the one
    /// before, bytes may stand in the recording of the exchange in which they arrived.
    void NextExchange();

    /// Whether NextExchange was called, ever.
    bool IsUsed() const;

protected:
    ~RecordedSocket() override;

private:
    const std::string peer;
    const Leftover leftover;
    std::shared_ptr<Recording> recording = std::make_shared<Recording>();
    bool taken = false;
    bool used = false;
};

/// Listens on an address and gives out connections that are recorded.
/// Throws Poco::Exception when the address cannot be listened on.
Poco::Net::ServerSocket ListenRecorded(const std::string& address, std::uint16_t port, int backlog,
                                       const RecordedSocket::Leftover& leftover);

} // namespace TavoSimulator
} // namespace Brenmoor
