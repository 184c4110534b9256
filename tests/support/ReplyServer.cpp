#include "support/ReplyServer.h"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
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

/// Whether the head is there and as much of a body as it names.
bool IsWhole(const std::string& request) {
    const std::size_t end = request.find("\r\n\r\n");
    if (end == std::string::npos) {
        return false;
    }
    const std::string name = "\r\nContent-Length: ";
    const std::size_t length = request.find(name);
    const std::size_t body = length < end ? std::stoul(request.substr(length + name.size())) : 0;
    return request.size() >= end + 4 + body;
}

} // namespace

ReplyServer::ReplyServer(int patience)
    : patienceSeconds(patience),
      listener(Checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket")), port(0) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const auto generic = reinterpret_cast<sockaddr*>(&address);
    Checked(bind(listener, generic, size), "bind");
    Checked(listen(listener, 64), "listen");
    Checked(getsockname(listener, generic, &size), "getsockname");
    port = ntohs(address.sin_port);
    thread = std::thread(&ReplyServer::Run, this);
}

ReplyServer::~ReplyServer() {
    // Ends the accept() that waits.
    shutdown(listener, SHUT_RDWR);
    thread.join();
    close(listener);
}

std::string ReplyServer::Address() const {
    return "127.0.0.1:" + std::to_string(port);
}

void ReplyServer::Serve(const std::string& bytes) {
    const std::lock_guard<std::mutex> lock(mutex);
    reply = bytes;
}

void ReplyServer::Run() {
    for (;;) {
        const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            return;
        }
        Answer(connection);
        close(connection);
    }
}

void ReplyServer::Answer(int connection) {
    const timeval patience = {patienceSeconds, 0};
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::string request;
    char buffer[16384];
    while (!IsWhole(request)) {
        const ssize_t count = recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) {
            return;
        }
        request.append(buffer, static_cast<std::size_t>(count));
    }
    std::string bytes;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        bytes = reply;
    }
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = send(connection, bytes.data() + sent, bytes.size() - sent, 0);
        if (count < 0) {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
