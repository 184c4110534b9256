#include "FaultyServer.h"

#include "faults/Fault.h"
#include "faults/SocketLine.h"

#include <Poco/Exception.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/StreamSocket.h>
#include <csignal>
#include <cstdlib>
#include <istream>
#include <streambuf>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

namespace {

using TavoSimulator::Fault;
using TavoSimulator::Reply;

constexpr int serverThreads = 4;
/// Of the pauses that faults make.
constexpr double pauseScale = 0.001;

constexpr char pollBody[] =
    R"({"commands": [{"id": "P1", "command": "'t1' go"}, {"id": "P1", "command": "file:'t2' f"}],)"
    R"( "gps": {"latitude": 59.9, "longitude": 10.7, "timeFix": 1700000000}, "shutdown": true})";

/// A request's body as it comes, and no further, since nobody sends anything behind it.
class Body : public std::streambuf {
public:
    /// `begin` has come already.
    Body(Poco::Net::StreamSocket& theSocket, std::string begin, std::size_t length)
        : socket(theSocket), buffer(std::move(begin)), left(length - buffer.size()) {
        setg(buffer.data(), buffer.data(), buffer.data() + buffer.size());
    }

private:
    int underflow() override {
        buffer.resize(std::min<std::size_t>(left, 65536));
        const int count =
            left == 0 ? 0 : socket.receiveBytes(buffer.data(), static_cast<int>(buffer.size()));
        if (count <= 0) {
            return traits_type::eof();
        }
        left -= static_cast<std::size_t>(count);
        setg(buffer.data(), buffer.data(), buffer.data() + count);
        return traits_type::to_int_type(*gptr());
    }

    Poco::Net::StreamSocket& socket;
    std::string buffer;
    std::size_t left;
};

/// Returns a request's head; what came behind it goes into `rest`.
std::string ReadHead(Poco::Net::StreamSocket& socket, std::string& rest) {
    std::size_t end = std::string::npos;
    while ((end = rest.find("\r\n\r\n")) == std::string::npos) {
        char buffer[4096];
        const int count = socket.receiveBytes(buffer, sizeof buffer);
        if (count <= 0) {
            throw TavoSimulator::Line::Ended();
        }
        rest.append(buffer, static_cast<std::size_t>(count));
    }
    const std::string head = rest.substr(0, end + 2);
    rest.erase(0, end + 4);
    return head;
}

std::size_t BodyLength(const std::string& head) {
    const std::string name = "\r\nContent-Length: ";
    const std::size_t at = head.find(name);
    return at == std::string::npos ? 0 : std::stoul(head.substr(at + name.size()));
}

/// Returns the first identifier; none of them needs encoding.
std::string PayloadId(const std::string& head) {
    const std::string name = "&id=";
    const std::size_t begin = head.find(name) + name.size();
    return head.substr(begin, head.find_first_of("& ", begin) - begin);
}

void Answer(Poco::Net::StreamSocket& socket) {
    std::string rest;
    const std::string head = ReadHead(socket, rest);
    const std::string id = PayloadId(head);
    const Fault* const fault =
        id == FaultyServer::healthyPayload ? nullptr : &TavoSimulator::FindFault(id);
    Reply reply = TavoSimulator::Ok();
    if (head.find("op=poll&") != std::string::npos) {
        reply.type = "application/json";
        reply.body = pollBody;
    }
    Body body(socket, rest, BodyLength(head));
    std::istream stream(&body);
    const auto never = [] {
        return false;
    };
    TavoSimulator::SocketLine played(socket, stream, never, pauseScale);
    TavoSimulator::Line& line = played;
    const bool early = fault != nullptr && (fault->when == Fault::When::BeforeBody ||
                                            fault->when == Fault::When::InBody);
    if (!early) {
        line.ReadBody();
    }
    if (fault != nullptr) {
        fault->play(line, {reply, id});
    } else {
        line.Send("HTTP/1.1 200 OK\r\nContent-Type: " + reply.type + "\r\nContent-Length: " +
                  std::to_string(reply.body.size()) + "\r\nConnection: close\r\n\r\n" + reply.body);
    }
}

void Serve(Poco::Net::ServerSocket& listener) {
    for (;;) {
        Poco::Net::StreamSocket socket = listener.acceptConnection();
        try {
            Answer(socket);
        } catch (const TavoSimulator::Line::Ended&) {
        } catch (const Poco::Exception&) {
        }
    }
}

[[noreturn]] void Run(Poco::Net::ServerSocket listener) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::thread> threads;
    threads.reserve(serverThreads);
    for (int i = 0; i < serverThreads; ++i) {
        threads.emplace_back(Serve, std::ref(listener));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::_Exit(0);
}

} // namespace

FaultyServer::FaultyServer() {
    const Poco::Net::ServerSocket listener(Poco::Net::SocketAddress("127.0.0.1", 0), 128);
    port = listener.address().port();
    process = fork();
    if (process < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (process == 0) {
        Run(listener);
    }
}

FaultyServer::~FaultyServer() {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

std::string FaultyServer::Address() const {
    return "127.0.0.1:" + std::to_string(port);
}

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
