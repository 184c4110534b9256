#pragma once

#include "wire/Exchange.h"

#include <Poco/Net/StreamSocket.h>
#include <chrono>
#include <functional>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// The connection to a client as a fault plays on it, byte by byte.
class Line {
public:
    /// Ends the playing: the client has hung up, or the server is going down.
    class Ended {};

    /// `closing` tells that the server is going down. `readBody` reads what is left of the
    /// request, up to so many bytes. Pauses take `pauseScale` times what they ask for.
    Line(Poco::Net::StreamSocket& socket, std::function<bool()> closing,
         std::function<void(std::size_t)> readBody, double pauseScale);

    /// Sends the bytes. Throws Ended.
    void Send(const std::string& bytes);

    /// Waits, while the client stays. Throws Ended.
    void Pause(std::chrono::milliseconds duration);

    /// Waits until the client hangs up. Throws Ended then.
    void Hold();

    /// Reads the request's body, or this much of it.
    void ReadBody(std::size_t most = static_cast<std::size_t>(-1));

    /// Ends the connection by a reset instead of a close.
    void Reset();

private:
    bool PeerPresent();

    Poco::Net::StreamSocket& socket;
    const std::function<bool()> closing;
    const std::function<void(std::size_t)> readBody;
    const double pauseScale;
};

/// The head of a reply as a healthy server sends it, with the empty line behind it.
std::string HeadText(const Reply& reply);

/// The whole of it.
std::string ReplyText(const Reply& reply);

} // namespace TavoSimulator
} // namespace Brenmoor
