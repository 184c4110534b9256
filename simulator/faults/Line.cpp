#include "Line.h"

#include <Poco/Exception.h>
#include <sys/socket.h>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// How often a pause looks whether it is to end.
constexpr std::chrono::milliseconds glance(20);

} // namespace

Line::Line(Poco::Net::StreamSocket& theSocket, std::function<bool()> theClosing,
           std::function<void(std::size_t)> theReadBody, double thePauseScale)
    : socket(theSocket), closing(std::move(theClosing)), readBody(std::move(theReadBody)),
      pauseScale(thePauseScale) {}

void Line::Send(const std::string& bytes) {
    std::size_t sent = 0;
    try {
        while (sent < bytes.size()) {
            sent += static_cast<std::size_t>(
                socket.sendBytes(bytes.data() + sent, static_cast<int>(bytes.size() - sent)));
            if (closing()) {
                throw Ended();
            }
        }
    } catch (const Poco::Exception&) {
        throw Ended();
    }
}

void Line::Pause(std::chrono::milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration * pauseScale;
    while (std::chrono::steady_clock::now() < end) {
        if (closing() || !PeerPresent()) {
            throw Ended();
        }
        const std::chrono::duration<double> left = end - std::chrono::steady_clock::now();
        std::this_thread::sleep_for(std::min<std::chrono::duration<double>>(left, glance));
    }
}

void Line::Hold() {
    for (;;) {
        Pause(std::chrono::hours(1));
    }
}

void Line::ReadBody(std::size_t most) {
    readBody(most);
}

void Line::Reset() {
    socket.setLinger(true, 0);
    socket.close();
}

bool Line::PeerPresent() {
    char next = '\0';
    try {
        // Bytes of a request that nobody reads tell nothing of the other side.
        return socket.receiveBytes(&next, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
    } catch (const Poco::TimeoutException&) {
        return true;
    } catch (const Poco::Exception&) {
        return false;
    }
}

std::string HeadText(const Reply& reply) {
    return "HTTP/1.1 " + std::to_string(reply.status) + " " + reply.reason +
           "\r\nContent-Type: " + reply.type +
           "\r\nContent-Length: " + std::to_string(reply.body.size()) +
           "\r\nConnection: close\r\n\r\n";
}

std::string ReplyText(const Reply& reply) {
    return HeadText(reply) + reply.body;
}

} // namespace TavoSimulator
} // namespace Brenmoor
