// Runs a command with a payload server's address as its last argument, and ends as it ends. The
// server answers every operation on a free port of the loopback interface, several at once, and
// does as little for it as it can.
// Usage: with_server COMMAND [ARGUMENT]...

#include "Replies.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <netinet/in.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr int servers = 16;
constexpr std::size_t bufferSize = 262144;

int Check(int result, const char* call) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return result;
}

void Send(int connection, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = send(connection, text.data(), text.size(), MSG_NOSIGNAL);
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Reads a request's head; what is behind it in `request` belongs to the body. False for none.
bool ReadHead(int connection, std::vector<char>& buffer, std::string& request, std::size_t& end) {
    do {
        const ssize_t count = read(connection, buffer.data(), buffer.size());
        if (count <= 0) {
            return false;
        }
        request.append(buffer.data(), static_cast<std::size_t>(count));
        end = request.find("\r\n\r\n");
    } while (end == std::string::npos);
    end += 4;
    return true;
}

/// Reads and forgets a body of which `rest` has arrived already; how much of it has in the end.
std::size_t SkipBody(int connection, std::vector<char>& buffer, std::size_t length,
                     std::size_t rest) {
    ssize_t count = 1;
    while (rest < length && (count = read(connection, buffer.data(), buffer.size())) > 0) {
        rest += static_cast<std::size_t>(count);
    }
    return rest;
}

/// The same for a body in chunks, which is taken to end where its last chunk's text does.
std::size_t SkipChunks(int connection, std::vector<char>& buffer, std::string tail) {
    static const std::string last = "0\r\n\r\n";
    std::size_t arrived = tail.size();
    while (tail.size() < last.size() ||
           tail.compare(tail.size() - last.size(), tail.npos, last) != 0) {
        const ssize_t count = read(connection, buffer.data(), buffer.size());
        if (count <= 0) {
            return 0;
        }
        tail.erase(0, tail.size() - std::min(tail.size(), last.size()));
        const auto size = static_cast<std::size_t>(count);
        const std::size_t kept = std::min(size, last.size());
        tail.append(buffer.data() + size - kept, kept);
        arrived += size;
    }
    return arrived;
}

void Answer(int connection, std::vector<char>& buffer) {
    static const std::string lengthKey = "\r\nContent-Length: ";
    std::string request;
    std::size_t end = 0;
    if (!ReadHead(connection, buffer, request, end)) {
        return;
    }
    const std::string head = request.substr(0, end);
    if (head.find("\r\nExpect: 100-continue") != head.npos) {
        Send(connection, "HTTP/1.1 100 Continue\r\n\r\n");
    }
    const std::size_t key = head.find(lengthKey);
    std::size_t length = 0;
    std::size_t arrived = request.size() - end;
    if (key != head.npos) {
        length = std::stoul(head.substr(key + lengthKey.size()));
        arrived = SkipBody(connection, buffer, length, arrived);
    } else if (head.find("\r\nTransfer-Encoding: chunked") != head.npos) {
        arrived = SkipChunks(connection, buffer, request.substr(end));
    }
    // Without a reply, an upload that lacks something is a failure to the one who made it.
    const std::string target = head.substr(0, head.find("\r\n"));
    if (arrived >= std::max(length, Brenmoor::TavoRemotingLib::LeastBody(target))) {
        Send(connection, Brenmoor::TavoRemotingLib::ReplyTo(target));
    }
}

void Serve(int listener) {
    std::vector<char> buffer(bufferSize);
    while (true) {
        const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection >= 0) {
            Answer(connection, buffer);
            close(connection);
        }
    }
}

int Listen() {
    const int listener = Check(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    Check(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), "bind");
    Check(listen(listener, SOMAXCONN), "listen");
    return listener;
}

std::string AddressOf(int listener) {
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    Check(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), "getsockname");
    return "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

int Run(char** command, const std::string& server) {
    std::string address = server;
    std::vector<char*> arguments;
    for (; *command != nullptr; ++command) {
        arguments.push_back(*command);
    }
    arguments.push_back(address.data());
    arguments.push_back(nullptr);
    const pid_t child = Check(fork(), "fork");
    if (child == 0) {
        execvp(arguments[0], arguments.data());
        std::cerr << "with_server: " << arguments[0] << ": " << std::strerror(errno) << std::endl;
        _exit(127);
    }
    int status = 0;
    Check(waitpid(child, &status, 0), "waitpid");
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: with_server COMMAND [ARGUMENT]..." << std::endl;
        return 2;
    }
    try {
        const int listener = Listen();
        const std::string address = AddressOf(listener);
        for (int i = 0; i < servers; ++i) {
            std::thread(&Serve, listener).detach(); // ends with the process
        }
        std::_Exit(Run(argv + 1, address));
    } catch (const std::exception& e) {
        std::cerr << "with_server: " << e.what() << std::endl;
        return 1;
    }
}
