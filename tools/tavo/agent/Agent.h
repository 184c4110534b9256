#pragma once

#include "agent/Handler.h"
#include "agent/Journal.h"
#include "agent/Signals.h"
#include "core/Session.h"

#include <optional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace Tavo {

struct AgentOptions {
    std::vector<std::string> handler;
    std::optional<std::string> onShutdown;
    std::optional<std::string> positionFile;
    std::string journal;
    long pollSeconds = 30;
    long handlerTimeout = 600;
    long outputLimit = 65536;
    long progressEvery = 0;
    long postpone = 0;
    long retryMost = 60;
};

/// Polls, has commands handled and answers them, until it is told to stop or to shut down.
class Agent {
public:
    Agent(Session& session, const AgentOptions& options);

    /// Returns after SIGTERM, SIGINT or a shutdown. Throws LocalError when the journal cannot be
    /// written, since a command could then be run twice, and UsageError as Session does.
    void Run();

private:
    /// True when something came of it.
    bool PollOnce();
    void Receive(const std::vector<TavoRemotingLib::HalcyrREST::RemoteCommand>& commands);
    void HandleAll();
    void Handle(Task& task);
    /// Sends the answers that the server has not taken yet. Throws what the client throws.
    void AnswerAll();
    void ShutDown();
    void Postpone();
    HandlerResult RunOrFail(const HandlerCall& call) const;
    void WritePosition(const TavoRemotingLib::HalcyrREST::GPSInfo& position) const;
    /// Tells of a failure of the server, once until it is well again, and waits.
    void Away(const std::exception& error);
    void Well();
    void Tell(const Task& task, const std::string& what) const;
    void Warn(const std::string& what) const;

    Session& session;
    const AgentOptions& options;
    TavoRemotingLib::HalcyrREST& client;
    std::vector<std::string> ids;
    const Signals signals;
    Journal journal;
    long retrySeconds = 0; ///< 0 while all is well
    bool shutDown = false;
};

} // namespace Tavo
} // namespace Brenmoor
