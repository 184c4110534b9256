#include "SocketLine.h"

#include <Poco/Exception.h>
#include <Poco/Net/SocketImpl.h>
#include <algorithm>
#include <limits>
#include <poll.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using RealClock = std::chrono::steady_clock;

/// How often a wait looks whether the server is going down.
constexpr std::chrono::milliseconds glance(20);

/// Waits, but not longer than that, for the other side to hang up. False once it has.
bool StaysFor(const Poco::Net::Socket& socket, std::chrono::milliseconds longest) {
    // Bytes of a request that nobody reads tell nothing of the other side, so they are not asked
    // for.
    pollfd polled = {socket.impl()->sockfd(), POLLRDHUP, 0};
    return poll(&polled, 1, static_cast<int>(longest.count())) <= 0;
}

} // namespace

SocketLine::SocketLine(Poco::Net::StreamSocket& theSocket, std::istream& theBody,
                       std::function<bool()> theClosing, double thePauseScale)
    : socket(theSocket), body(theBody), closing(std::move(theClosing)), pauseScale(thePauseScale) {}

void SocketLine::Send(const std::string& bytes) {
    constexpr std::size_t piece = 65536;
    try {
        for (std::size_t sent = 0; sent < bytes.size();) {
            if (closing()) {
                throw Ended();
            }
            const std::size_t count = std::min(piece, bytes.size() - sent);
            sent += static_cast<std::size_t>(
                socket.sendBytes(bytes.data() + sent, static_cast<int>(count)));
        }
    } catch (const Poco::Exception&) {
        throw Ended();
    }
}

void SocketLine::Pause(std::chrono::milliseconds duration) {
    const auto end = RealClock::now() + std::chrono::duration_cast<RealClock::duration>(
                                            std::chrono::duration<double>(duration) * pauseScale);
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - RealClock::now());
        Wait(std::clamp(left, std::chrono::milliseconds(0), glance));
        if (left.count() <= 0) {
            return;
        }
    }
}

void SocketLine::Hold() {
    for (;;) {
        Wait(glance);
    }
}

void SocketLine::Wait(std::chrono::milliseconds duration) const {
    if (closing() || !StaysFor(socket, duration)) {
        throw Ended();
    }
}

void SocketLine::AwaitBody() {
    body.peek();
}

void SocketLine::ReadBody(std::size_t most) {
    constexpr std::size_t all = std::numeric_limits<std::streamsize>::max();
    body.ignore(static_cast<std::streamsize>(std::min(most, all)));
}

void SocketLine::Reset() {
    socket.setLinger(true, 0);
    socket.close();
}

} // namespace TavoSimulator
} // namespace Brenmoor
