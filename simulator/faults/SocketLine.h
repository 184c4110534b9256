#pragma once

#include "Line.h"

#include <Poco/Net/StreamSocket.h>
#include <functional>
#include <istream>

namespace Brenmoor {
namespace TavoSimulator {

/// The connection on which a request came.
class SocketLine : public Line {
public:
    /// `closing` tells that the server is going down; `body` is the request's. Pauses take
    /// `pauseScale` times what they ask for.
    SocketLine(Poco::Net::StreamSocket& socket, std::istream& body, std::function<bool()> closing,
               double pauseScale);

    void Send(const std::string& bytes) override;
    void Pause(std::chrono::milliseconds duration) override;
    void Hold() override;
    void AwaitBody() override;
    void ReadBody(std::size_t most) override;
    void Reset() override;

private:
    /// Waits, but for less than a moment. Throws Ended.
    void Wait(std::chrono::milliseconds duration) const;

    Poco::Net::StreamSocket& socket;
    std::istream& body;
    const std::function<bool()> closing;
    const double pauseScale;
};

} // namespace TavoSimulator
} // namespace Brenmoor
