#pragma once

#include "LineOutput.h"
#include "model/World.h"

#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/Net/HTTPRequestHandlerFactory.h>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Brenmoor {
namespace TavoSimulator {

/// What all exchanges of a server share: the world, the place for their lines, and the count of
/// those under way. Every operation may be called from any thread.
class ExchangeDesk {
public:
    /// `lines` may be null.
    ExchangeDesk(World& world, LineOutput* lines);

    World& GetWorld();
    /// Writes the line of an exchange that has ended.
    void Print(std::uint64_t number);
    /// Takes note of bytes that were no HTTP request.
    void NoteGarbage(const std::string& peer, const std::shared_ptr<const Recording>& recording);
    void Begin();
    void End();
    /// Returns when no exchange is under way, or after `longest`.
    void WaitUntilIdle(std::chrono::milliseconds longest);

private:
    World& world;
    LineOutput* const lines;
    std::mutex mutex;
    std::condition_variable ended;
    int underWay = 0;
};

/// Serves one request.
class ExchangeHandler : public Poco::Net::HTTPRequestHandler {
public:
    explicit ExchangeHandler(ExchangeDesk& desk);

    void handleRequest(Poco::Net::HTTPServerRequest& request,
                       Poco::Net::HTTPServerResponse& response) override;

private:
    ExchangeDesk& desk;
};

class ExchangeHandlerFactory : public Poco::Net::HTTPRequestHandlerFactory {
public:
    explicit ExchangeHandlerFactory(ExchangeDesk& desk);

    Poco::Net::HTTPRequestHandler*
    createRequestHandler(const Poco::Net::HTTPServerRequest& request) override;

private:
    ExchangeDesk& desk;
};

} // namespace TavoSimulator
} // namespace Brenmoor
