#include "support/ScriptedServer.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

int Checked(int result, const char* call) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return result;
}

/// How many bytes a request takes, or npos while it is not complete.
std::size_t RequestSize(const std::string& bytes, bool withBody) {
    const std::size_t end = bytes.find("\r\n\r\n");
    if (end == std::string::npos) {
        return end;
    }
    const std::size_t head = end + 4;
    if (!withBody) {
        return head;
    }
    // Not in the body, which may be large and is looked at again for each piece.
    const std::string lines = bytes.substr(0, head);
    if (lines.find("Transfer-Encoding: chunked\r\n") != std::string::npos) {
        const std::size_t last = bytes.find("\r\n0\r\n\r\n", head - 2);
        return last == std::string::npos ? last : last + 7;
    }
    const std::string name = "Content-Length: ";
    const std::size_t length = lines.find(name);
    const std::size_t body =
        length != std::string::npos ? std::stoul(lines.substr(length + name.size())) : 0;
    return bytes.size() >= head + body ? head + body : std::string::npos;
}

} // namespace

Step ReadHead() {
    return {Step::Kind::ReadHead};
}

Step ReadRequest() {
    return {Step::Kind::ReadRequest};
}

Step Send(std::string bytes) {
    return {Step::Kind::Send, std::move(bytes)};
}

Step Flood(std::string bytes) {
    return {Step::Kind::Flood, std::move(bytes)};
}

Step Pause(std::chrono::milliseconds time) {
    return {Step::Kind::Pause, {}, time};
}

Step PauseUntil(std::chrono::milliseconds time) {
    return {Step::Kind::PauseUntil, {}, time};
}

Step Hold() {
    return {Step::Kind::Hold};
}

Step Stall() {
    return {Step::Kind::Stall};
}

Step HalfClose() {
    return {Step::Kind::HalfClose};
}

Step Reset() {
    return {Step::Kind::Reset};
}

Script Reply(const std::string& bytes) {
    return {ReadRequest(), Send(bytes)};
}

std::string OkReply(const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

ScriptedServer::ScriptedServer(std::vector<Script> played)
    : scripts(std::move(played)), listener(-1), stop{-1, -1}, release{-1, -1}, port(0) {
    Checked(pipe2(stop, O_CLOEXEC), "pipe2");
    Checked(pipe2(release, O_CLOEXEC), "pipe2");
    listener = Checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const auto generic = reinterpret_cast<sockaddr*>(&address);
    Checked(bind(listener, generic, size), "bind");
    Checked(listen(listener, 64), "listen");
    Checked(getsockname(listener, generic, &size), "getsockname");
    port = ntohs(address.sin_port);
    acceptor = std::thread(&ScriptedServer::Accept, this);
}

ScriptedServer::ScriptedServer(const Script& script)
    : ScriptedServer(std::vector<Script>{script}) {}

ScriptedServer::ScriptedServer(const std::string& reply) : ScriptedServer(Reply(reply)) {}

ScriptedServer::~ScriptedServer() {
    // Nobody reads from the pipe: closing its end wakes every poll at once.
    close(stop[1]);
    acceptor.join();
    for (std::thread& player : players) {
        player.join();
    }
    close(stop[0]);
    close(release[0]);
    close(release[1]);
    close(listener);
}

std::string ScriptedServer::Address() const {
    return "127.0.0.1:" + std::to_string(port);
}

std::vector<std::string> ScriptedServer::Requests() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return requests;
}

std::string ScriptedServer::OnlyRequest() const {
    const std::vector<std::string> all = Requests();
    EXPECT_EQ(all.size(), 1U) << "connections";
    return all.empty() ? std::string() : all.front();
}

void ScriptedServer::WaitForConnections(std::size_t count) {
    std::unique_lock<std::mutex> lock(mutex);
    accepted.wait(lock, [&] { return requests.size() >= count; });
}

void ScriptedServer::Release() {
    // Nobody reads it, so that it is there for every one who waits.
    Checked(static_cast<int>(write(release[1], "", 1)), "write");
}

void ScriptedServer::Accept() {
    while (WaitUntil(listener, POLLIN, -1)) {
        const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            continue;
        }
        const std::lock_guard<std::mutex> lock(mutex);
        const std::size_t index = requests.size();
        const Script& script = scripts[std::min(index, scripts.size() - 1)];
        requests.emplace_back();
        players.emplace_back(&ScriptedServer::Play, this, connection, std::cref(script), index);
        accepted.notify_all();
    }
}

void ScriptedServer::Play(int connection, const Script& script, std::size_t index) {
    for (const Step& step : script) {
        if (!Do(step, connection, index)) {
            break;
        }
    }
    close(connection);
}

bool ScriptedServer::Do(const Step& step, int connection, std::size_t index) {
    switch (step.kind) {
    case Step::Kind::ReadHead:
        return Read(connection, index, false);
    case Step::Kind::ReadRequest:
        return Read(connection, index, true);
    case Step::Kind::Send:
        return SendAll(connection, step.bytes);
    case Step::Kind::Flood:
        while (SendAll(connection, step.bytes)) {
        }
        return false;
    case Step::Kind::Pause:
        WaitUntil(-1, 0, static_cast<int>(step.time.count()));
        return true;
    case Step::Kind::PauseUntil: {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            begin + step.time - std::chrono::steady_clock::now());
        WaitUntil(-1, 0, std::max(static_cast<int>(left.count()), 0));
        return true;
    }
    case Step::Kind::Hold:
        return WaitUntil(release[0], POLLIN, -1);
    case Step::Kind::Stall:
        return WaitUntil(connection, POLLRDHUP, -1);
    case Step::Kind::HalfClose:
        return shutdown(connection, SHUT_WR) == 0;
    case Step::Kind::Reset: {
        const linger abort = {1, 0};
        setsockopt(connection, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
        return false;
    }
    }
    return false;
}

bool ScriptedServer::Read(int connection, std::size_t index, bool withBody) {
    std::string bytes = Requests()[index];
    char buffer[16384];
    while (RequestSize(bytes, withBody) == std::string::npos) {
        if (!WaitUntil(connection, POLLIN, -1)) {
            return false;
        }
        // A head is read byte by byte, so that nothing of the body is taken.
        const ssize_t count = recv(connection, buffer, withBody ? sizeof buffer : 1, 0);
        if (count <= 0) {
            return false;
        }
        bytes.append(buffer, static_cast<std::size_t>(count));
        const std::lock_guard<std::mutex> lock(mutex);
        requests[index].append(buffer, static_cast<std::size_t>(count));
    }
    return true;
}

bool ScriptedServer::SendAll(int connection, const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        if (!WaitUntil(connection, POLLOUT, -1)) {
            return false;
        }
        const ssize_t count =
            send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN) {
            return false;
        }
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

/// False when the server is being destroyed, or when the time has passed.
bool ScriptedServer::WaitUntil(int descriptor, short events, int timeoutMs) const {
    pollfd polled[2] = {{stop[0], 0, 0}, {descriptor, events, 0}};
    int ready = -1;
    do {
        ready = poll(polled, 2, timeoutMs);
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && polled[0].revents == 0;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
