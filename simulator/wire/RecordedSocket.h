#pragma once

#include "Recording.h"

#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/StreamSocketImpl.h>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
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

    /// Whoever is slower than `longestHead` with a request up to its content is hung up on.
    RecordedSocket(poco_socket_t descriptor, std::string peer, const Leftover& leftover,
                   std::chrono::milliseconds longestHead);

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

    /// Keeps something until the connection is closed or something else is to be kept.
    void Keep(std::shared_ptr<void> something);

protected:
    ~RecordedSocket() override;

private:
    using Real = std::chrono::steady_clock;

    void RequireHaste();

    const std::string peer;
    const Leftover leftover;
    const std::chrono::milliseconds longestHead;
    /// When this exchange's first bytes were asked for.
    std::optional<Real::time_point> headBegin;
    std::shared_ptr<Recording> recording = std::make_shared<Recording>();
    bool taken = false;
    bool used = false;
    std::shared_ptr<void> kept;
};

/// How a server listens.
struct Listening {
    std::string address;
    std::uint16_t port = 0;
    int backlog = 0;
    RecordedSocket::Leftover leftover;
    std::chrono::milliseconds longestHead{0};
    /// How long a connection may lie there before it sends anything.
    std::chrono::milliseconds longestIdle{0};
    /// While it says so, connections are refused.
    std::function<bool()> busy;
};

/// Listens on an address and gives out connections that are recorded, once they have sent
/// something. Throws Poco::Exception when the address cannot be listened on.
Poco::Net::ServerSocket ListenRecorded(const Listening& listening);

} // namespace TavoSimulator
} // namespace Brenmoor
