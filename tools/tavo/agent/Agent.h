#pragma once

#include "agent/Handler.h"
#include "agent/Journal.h"
#include "agent/Signals.h"
#include "core/ExitCode.h"
#include "core/Session.h"

#include <chrono>
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
    /// written, since a command could then be run twice, and what tells of a bad server address.
    void Run();

private:
    using Clock = std::chrono::steady_clock;

    /// Polls, or does what is left of a shutdown.
    void Step();
    void PollOnce();
    long PollMilliseconds() const;
    /// True when one of them is new.
    bool Receive(const std::vector<TavoRemotingLib::HalcyrREST::RemoteCommand>& commands);
    void HandleAll();
    void Handle(Task& task);
    /// Sends the answers that the server has not taken yet. One that it does not take holds up
    /// neither the others nor a poll.
    void AnswerAll();
    /// Done when the server took it.
    ExitCode Answer(Task& task);
    void ShutDown();
    void RunOnShutdown();
    /// While a program runs: tells the service manager, and postpones a shutdown when it is time.
    void KeepAlive();
    HandlerResult RunOrFail(const HandlerCall& call) const;
    void WritePosition(const TavoRemotingLib::HalcyrREST::GPSInfo& position);
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
    long retrySeconds = 0;  ///< 0 while all is well
    long answerSeconds = 0; ///< likewise for answers
    Clock::time_point nextAnswer;
    Clock::time_point nextPostponement;
    bool isToShutDown = false;
    bool isPrepared = false; ///< for being off
    bool isOff = false;
    bool isPositionWritten = true;
};

} // namespace Tavo
} // namespace Brenmoor
