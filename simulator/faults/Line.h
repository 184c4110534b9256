#pragma once

#include <chrono>
#include <cstddef>
#include <limits>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// The connection to a client as a fault plays on it, byte by byte.
class Line {
public:
    /// Ends the playing: the client has hung up, or the server is going down.
    class Ended {};

    Line() = default;
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;
    virtual ~Line();

    /// Sends the bytes. Throws Ended.
    virtual void Send(const std::string& bytes) = 0;

    /// Waits, while the client stays. Throws Ended.
    virtual void Pause(std::chrono::milliseconds duration) = 0;

    /// Waits until the client hangs up. Throws Ended then.
    virtual void Hold() = 0;

    /// Waits until some of the request's body is there, but does not read it.
    virtual void AwaitBody() = 0;

    /// Reads the request's body, or this much of it.
    virtual void ReadBody(std::size_t most = std::numeric_limits<std::size_t>::max()) = 0;

    /// Ends the connection by a reset instead of a close.
    virtual void Reset() = 0;
};

} // namespace TavoSimulator
} // namespace Brenmoor
