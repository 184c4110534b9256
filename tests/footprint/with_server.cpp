// Runs a command with a payload server's address as its last argument, and ends as it ends. The
// server answers every operation on a free port of the loopback interface.
// Usage: with_server COMMAND [ARGUMENT]...

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

const char pollReply[] = R"({
    "commands": [
        {"id": "1", "command": "'t1'status"},
        {"id": "2", "command": "FILE:'t2'/tmp/settings.txt"}
    ],
    "gps": {"latitude": 36.8, "longitude": -121.8, "timeFix": 1700000000.5},
    "shutdown": true
})";

int Check(int result, const char* call) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return result;
}

bool Has(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

/// The size of a request whose head is all there; 0 before that.
std::size_t RequestSize(const std::string& request) {
    const std::size_t end = request.find("\r\n\r\n");
    if (end == std::string::npos) {
        return 0;
    }
    static const std::string key = "\r\nContent-Length: ";
    const std::size_t length = request.find(key);
    const bool hasBody = length < end;
    return end + 4 + (hasBody ? std::stoul(request.substr(length + key.size())) : 0);
}

std::string Read(int connection) {
    std::string request;
    char buffer[4096];
    while (request.empty() || RequestSize(request) == 0 || request.size() < RequestSize(request)) {
        const ssize_t count = read(connection, buffer, sizeof buffer);
        if (count <= 0) {
            break;
        }
        request.append(buffer, static_cast<std::size_t>(count));
    }
    return request;
}

/// A refusal differs in the status line alone, so that both kinds of programs read the same.
std::string Reply(const std::string& request) {
    const std::string target = request.substr(0, request.find("\r\n"));
    const std::string status = Has(target, "id=refused") ? "500 Refused" : "200 OK";
    const std::string body = Has(target, "op=poll") ? pollReply : "OK";
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

void Serve(int listener) {
    while (true) {
        const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            continue;
        }
        const std::string reply = Reply(Read(connection));
        static_cast<void>(send(connection, reply.data(), reply.size(), MSG_NOSIGNAL));
        close(connection);
    }
}

int Listen() {
    const int listener = Check(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    Check(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), "bind");
    Check(listen(listener, 8), "listen");
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
        // Ends with the process.
        std::thread(&Serve, listener).detach();
        std::_Exit(Run(argv + 1, address));
    } catch (const std::exception& e) {
        std::cerr << "with_server: " << e.what() << std::endl;
        return 1;
    }
}
