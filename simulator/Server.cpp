#include "Server.h"
#include "ExchangeHandler.h"

#include <Poco/Net/HTTPServer.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/ThreadPool.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

// Every held poll occupies a thread, and a person must still get through.
constexpr int mostConnections = 512;
constexpr auto keepAliveSeconds = 5;
constexpr auto workerIdleMicroseconds = 200 * 1000;
// How long replies to the polls that a stop ends may take to go out.
constexpr std::chrono::milliseconds partingTime(500);

Poco::Net::ServerSocket Listen(const std::string& address, std::uint16_t port) {
    Poco::Net::ServerSocket socket;
    // Without reusePort: two simulators on one port would share its connections unnoticed.
    socket.bind(Poco::Net::SocketAddress(address, port), /* reuseAddress = */ true,
                /* reusePort = */ false);
    socket.listen(mostConnections);
    return socket;
}

Poco::Net::HTTPServerParams::Ptr Parameters() {
    Poco::Net::HTTPServerParams::Ptr parameters(new Poco::Net::HTTPServerParams);
    parameters->setMaxThreads(mostConnections);
    parameters->setMaxQueued(mostConnections);
    // A worker that is about to wait for work when the server stops misses the notice and waits
    // this long, ten seconds by default.
    parameters->setThreadIdleTime(Poco::Timespan(0, workerIdleMicroseconds));
    parameters->setKeepAlive(true);
    parameters->setKeepAliveTimeout(Poco::Timespan(keepAliveSeconds, 0));
    return parameters;
}

} // namespace

class Server::Implementation {
public:
    Implementation(World& theWorld, const std::string& address, std::uint16_t port,
                   std::ostream* lines)
        : world(theWorld), socket(Listen(address, port)), desk(world, lines),
          threads(2, mostConnections),
          server(new ExchangeHandlerFactory(desk), threads, socket, Parameters()) {
        server.start();
    }

    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    ~Implementation() {
        world.payloads.Close();
        desk.WaitUntilIdle(partingTime);
        server.stopAll(/* abortCurrent = */ true);
        threads.joinAll();
    }

    std::uint16_t Port() const {
        return socket.address().port();
    }

private:
    World& world;
    Poco::Net::ServerSocket socket;
    ExchangeDesk desk;
    Poco::ThreadPool threads;
    Poco::Net::HTTPServer server;
};

Server::Server(World& world, const std::string& address, std::uint16_t port, std::ostream* lines)
    : implementation(std::make_unique<Implementation>(world, address, port, lines)) {}

Server::~Server() = default;

std::uint16_t Server::Port() const {
    return implementation->Port();
}

} // namespace TavoSimulator
} // namespace Brenmoor
