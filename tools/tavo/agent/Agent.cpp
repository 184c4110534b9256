#include "agent/Agent.h"

#include "agent/Notify.h"
#include "commands/Position.h"
#include "core/Failure.h"
#include "core/Text.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

namespace {

using TavoRemotingLib::HalcyrREST;

constexpr long mostCommands = 100;
/// A longer text has no room in the environment.
constexpr std::size_t mostInVariable = 100000;
/// A server that answers at once with nothing new is asked no more often than this.
constexpr std::chrono::milliseconds leastPoll(250);

long Longer(long seconds, long most) {
    return std::min(std::max(1L, seconds * 2), most);
}

} // namespace

Agent::Agent(Session& theSession, const AgentOptions& theOptions)
    : session(theSession), options(theOptions), client(session.Client()), ids(session.Ids()),
      signals(std::chrono::seconds(options.pollSeconds + 1)), journal(options.journal) {}

void Agent::Run() {
    NotifyManager("READY=1");
    while (!signals.StopRequested() && !isOff) {
        NotifyManager("WATCHDOG=1");
        HandleAll();
        AnswerAll();
        if (!signals.StopRequested()) {
            Step();
        }
        journal.Forget();
    }
    NotifyManager("STOPPING=1");
}

void Agent::Step() {
    try {
        if (isPrepared) {
            ShutDown();
        } else {
            PollOnce();
        }
        Well();
    } catch (const LocalError&) {
        throw;
    } catch (const std::exception& error) {
        if (FailureOf(error, session.options.server).code == ExitCode::Usage) {
            throw;
        }
        Away(error);
    }
}

void Agent::PollOnce() {
    const auto earliestEnd = Clock::now() + leastPoll;
    std::vector<HalcyrREST::RemoteCommand> commands;
    HalcyrREST::GPSInfo position;
    HalcyrREST::ShutdownInfo shutdown;
    try {
        client.Poll(ids, &commands, options.positionFile ? &position : nullptr, &shutdown,
                    PollMilliseconds(), mostCommands);
    } catch (const HalcyrREST::ServerTimeoutOnRequest&) { // NOLINT(bugprone-empty-catch)
        // There is nothing new.
    } catch (const std::exception&) {
        // The server will not send again the commands before a malformed one.
        Receive(commands);
        throw;
    }
    const bool isNew = Receive(commands);
    if (position.received) {
        WritePosition(position);
    }
    if (shutdown.requested) {
        ShutDown();
    } else if (!isNew) {
        signals.Pause(std::chrono::ceil<std::chrono::milliseconds>(earliestEnd - Clock::now()));
    }
}

/// Shorter when an answer is to be tried again before.
long Agent::PollMilliseconds() const {
    using std::chrono::milliseconds;
    const milliseconds most(options.pollSeconds * 1000);
    const auto untilAnswer = std::chrono::ceil<milliseconds>(nextAnswer - Clock::now());
    const auto time = answerSeconds == 0 ? most : std::clamp(untilAnswer, leastPoll, most);
    return static_cast<long>(time.count()); // 32 bits on the target
}

bool Agent::Receive(const std::vector<HalcyrREST::RemoteCommand>& commands) {
    bool isNew = false;
    for (const HalcyrREST::RemoteCommand& command : commands) {
        const Task* const known = journal.Find(command);
        isNew = isNew || known == nullptr;
        if (known != nullptr && known->state != Task::State::Answered) {
            continue; // it is on its way
        }
        Task task;
        task.command = command;
        if (known != nullptr) {
            // The server did not see the answer, or sends everything twice.
            task.state = Task::State::Ended;
            task.answer = "[done before, not run again]";
            task.succeeded = known->succeeded;
        }
        journal.Add(task);
    }
    return isNew;
}

void Agent::HandleAll() {
    for (Task& task : journal.Tasks()) {
        if (task.state == Task::State::Received && !signals.StopRequested()) {
            Handle(task);
            AnswerAll();
        }
    }
}

void Agent::Handle(Task& task) {
    const HalcyrREST::RemoteCommand& command = task.command;
    task.state = Task::State::Started;
    journal.Note(task);
    HandlerCall call;
    call.words = options.handler;
    call.environment = {
        {"TAVO_ID", command.id},
        {"TAVO_TAG", command.tag},
        {"TAVO_KIND", command.isFile ? "file" : "plain"},
        {"TAVO_COMMAND", command.command.size() <= mostInVariable ? command.command : ""}};
    call.input = command.command;
    call.longest = std::chrono::seconds(options.handlerTimeout);
    call.mostOutput = static_cast<std::size_t>(options.outputLimit);
    call.alive = [this] {
        KeepAlive();
    };
    call.between = std::chrono::seconds(options.progressEvery);
    call.progress = [&](const std::string& output) {
        NotifyManager("WATCHDOG=1");
        try {
            client.RespondToCommand(HalcyrREST::EncodeURL(command.id), command.tag, output, false,
                                    true);
            return true;
        } catch (const std::exception& error) {
            Warn("no progress told: " + FailureOf(error, session.options.server).Line());
            return false;
        }
    };
    const HandlerResult result = RunOrFail(call);
    task.state = Task::State::Ended;
    task.answer = result.output;
    task.succeeded = result.succeeded;
    journal.Note(task);
    Tell(task, result.succeeded ? "succeeded" : "failed");
}

void Agent::AnswerAll() {
    const bool isTime = Clock::now() >= nextAnswer;
    bool isTaken = true;
    for (Task& task : journal.Tasks()) {
        // A stopping agent leaves its answers to the next one: the server may be slow.
        if (task.state == Task::State::Ended && !signals.StopRequested() &&
            (isTime || !task.isRefused)) {
            const ExitCode code = Answer(task);
            isTaken = isTaken && code == ExitCode::Done;
            if (code == ExitCode::NoConnection || code == ExitCode::TimedOut) {
                break; // the others would fare no better
            }
        }
    }
    if (!isTaken) {
        answerSeconds = Longer(answerSeconds, options.retryMost);
        nextAnswer = Clock::now() + std::chrono::seconds(answerSeconds);
    } else if (isTime) {
        answerSeconds = 0;
    }
}

ExitCode Agent::Answer(Task& task) {
    NotifyManager("WATCHDOG=1");
    try {
        client.RespondToCommand(HalcyrREST::EncodeURL(task.command.id), task.command.tag,
                                task.answer, true, task.succeeded);
    } catch (const std::exception& error) {
        const Failure failure = FailureOf(error, session.options.server);
        // Of a server that is away, the poll tells.
        if (!task.isRefused && failure.code != ExitCode::NoConnection) {
            Warn("the answer to '" + task.command.tag + "' is kept: " + failure.Line());
        }
        task.isRefused = true;
        return failure.code;
    }
    task.state = Task::State::Answered;
    journal.Note(task);
    task.answer.clear();
    task.answer.shrink_to_fit();
    return ExitCode::Done;
}

HandlerResult Agent::RunOrFail(const HandlerCall& call) const {
    try {
        return RunHandler(call, signals);
    } catch (const std::exception& error) {
        Warn(error.what());
        HandlerResult result;
        result.output = std::string("[") + error.what() + "]";
        return result;
    }
}

void Agent::WritePosition(const HalcyrREST::GPSInfo& position) {
    const std::string unfinished = *options.positionFile + ".new";
    std::ofstream file(unfinished);
    file << JsonLine(JsonOf(position)) << '\n';
    file.close();
    // Whoever reads it never sees it half written.
    const bool isWritten =
        file && std::rename(unfinished.c_str(), options.positionFile->c_str()) == 0;
    if (!isWritten && isPositionWritten) {
        Warn("the position cannot be written to '" + *options.positionFile + "'");
    }
    isPositionWritten = isWritten;
}

void Agent::Away(const std::exception& error) {
    if (retrySeconds == 0) {
        Warn(FailureOf(error, session.options.server).Line() + "; carrying on");
    }
    retrySeconds = Longer(retrySeconds, options.retryMost);
    for (long i = 0; i < retrySeconds && !signals.StopRequested(); ++i) {
        NotifyManager("WATCHDOG=1");
        signals.Pause(std::chrono::seconds(1));
    }
}

void Agent::Well() {
    if (retrySeconds != 0) {
        Warn(session.options.server + " is back");
    }
    retrySeconds = 0;
}

void Agent::Tell(const Task& task, const std::string& what) const {
    Json::Value line;
    line["event"] = what;
    line["id"] = task.command.id;
    line["tag"] = task.command.tag;
    session.output.Result(Escaped(task.command.id + ": '" + task.command.tag + "' " + what) + "\n",
                          line);
}

void Agent::Warn(const std::string& what) const {
    std::cerr << Style(STDERR_FILENO).Red("tavo agent:") + " " + OneLine(what) + "\n";
}

} // namespace Tavo
} // namespace Brenmoor
