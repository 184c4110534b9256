#include "Server.h"
#include "ExchangeHandler.h"
#include "RecordedSocket.h"

#include <Poco/Net/HTTPServer.h>
#include <Poco/ThreadPool.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

// Every held poll occupies a thread, and a person must still get through.
constexpr int mostConnections = 512;
static_assert(PayloadRegistry::mostHeldPolls + 64 <= mostConnections);
// Beyond these, those that come are told that there is too much to do.
constexpr int mostQueued = 256;
// How long a client may be silent within its request.
constexpr auto longestSilenceSeconds = 30;
constexpr auto keepAliveSeconds = 5;
constexpr auto workerIdleMicroseconds = 200 * 1000;
// How long what a stop ends, as polls and streams of events, may take to go out.
constexpr std::chrono::milliseconds partingTime(2000);

Poco::Net::HTTPServerParams::Ptr Parameters() {
    Poco::Net::HTTPServerParams::Ptr parameters(new Poco::Net::HTTPServerParams);
    parameters->setMaxThreads(mostConnections);
    parameters->setMaxQueued(mostConnections);
    // A worker that is about to wait for work when the server stops misses the notice and waits
    // this long, ten seconds by default.
    parameters->setThreadIdleTime(Poco::Timespan(0, workerIdleMicroseconds));
    parameters->setTimeout(Poco::Timespan(longestSilenceSeconds, 0));
    parameters->setKeepAlive(true);
    parameters->setKeepAliveTimeout(Poco::Timespan(keepAliveSeconds, 0));
    return parameters;
}

} // namespace

class Server::Implementation {
public:
    Implementation(World& theWorld, const std::string& address, std::uint16_t port,
                   LineOutput* lines)
        : world(theWorld), desk(world, lines), socket(ListenRecorded(Manner(address, port))),
          threads(2, mostConnections),
          server(new ExchangeHandlerFactory(desk), threads, socket, Parameters()) {
        server.start();
    }

    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    ~Implementation() {
        world.payloads.Close();
        world.changes.Close();
        desk.WaitUntilIdle(partingTime);
        // Ends the wait for connections, of which Poco's server sleeps through a stop.
        socket.impl()->shutdownReceive();
        server.stopAll(/* abortCurrent = */ true);
        threads.joinAll();
    }

    std::uint16_t Port() const {
        return socket.address().port();
    }

private:
    static std::chrono::milliseconds Milliseconds(double seconds) {
        return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
    }

    Listening Manner(const std::string& address, std::uint16_t port) {
        Listening listening;
        listening.address = address;
        listening.port = port;
        listening.backlog = mostConnections;
        listening.leftover = [this](const std::string& peer,
                                    const std::shared_ptr<const Recording>& recording) {
            desk.NoteGarbage(peer, recording);
        };
        listening.longestHead = Milliseconds(world.settings.longestHeadSeconds);
        listening.longestIdle = Milliseconds(world.settings.longestIdleSeconds);
        listening.busy = [this] {
            return server.queuedConnections() >= mostQueued;
        };
        return listening;
    }

    World& world;
    ExchangeDesk desk;
    Poco::Net::ServerSocket socket;
    Poco::ThreadPool threads;
    Poco::Net::HTTPServer server;
};

Server::Server(World& world, const std::string& address, std::uint16_t port, LineOutput* lines)
    : implementation(std::make_unique<Implementation>(world, address, port, lines)) {}

Server::~Server() = default;

std::uint16_t Server::Port() const {
    return implementation->Port();
}

} // namespace TavoSimulator
} // namespace Brenmoor
