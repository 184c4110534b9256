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

} // namespace

Agent::Agent(Session& theSession, const AgentOptions& theOptions)
    : session(theSession), options(theOptions), client(session.Client()), ids(session.Ids()),
      journal(options.journal) {}

void Agent::Run() {
    NotifyManager("READY=1");
    while (!signals.StopRequested() && !shutDown) {
        NotifyManager("WATCHDOG=1");
        HandleAll();
        try {
            AnswerAll();
            if (!signals.StopRequested() && PollOnce()) {
                Well();
            }
        } catch (const LocalError&) {
            throw;
        } catch (const std::exception& error) {
            Away(error);
        }
        journal.Forget();
    }
    NotifyManager("STOPPING=1");
}

bool Agent::PollOnce() {
    std::vector<HalcyrREST::RemoteCommand> commands;
    HalcyrREST::GPSInfo position;
    HalcyrREST::ShutdownInfo shutdown;
    try {
        client.Poll(ids, &commands, options.positionFile ? &position : nullptr, &shutdown,
                    options.pollSeconds * 1000, mostCommands);
    } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
        return true;
    } catch (const std::exception&) {
        // The server will not send again the commands before a malformed one.
        Receive(commands);
        throw;
    }
    Receive(commands);
    if (position.received) {
        WritePosition(position);
    }
    if (shutdown.requested) {
        HandleAll();
        ShutDown();
    }
    return true;
}

void Agent::Receive(const std::vector<HalcyrREST::RemoteCommand>& commands) {
    for (const HalcyrREST::RemoteCommand& command : commands) {
        const Task* const known = journal.Find(command);
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
}

void Agent::HandleAll() {
    for (Task& task : journal.Tasks()) {
        if (task.state != Task::State::Received || signals.StopRequested()) {
            continue;
        }
        Handle(task);
        try {
            AnswerAll();
        } catch (const LocalError&) {
            throw;
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
            // It is on disk, and sent before the next poll.
        }
    }
}

void Agent::Handle(Task& task) {
    const HalcyrREST::RemoteCommand& command = task.command;
    task.state = Task::State::Started;
    journal.Note(task);
    HandlerCall call;
    call.words = options.handler;
    call.environment = {{"TAVO_ID", command.id},
                        {"TAVO_TAG", command.tag},
                        {"TAVO_KIND", command.isFile ? "file" : "plain"},
                        {"TAVO_COMMAND", command.command}};
    call.input = command.command;
    call.longest = std::chrono::seconds(options.handlerTimeout);
    call.mostOutput = static_cast<std::size_t>(options.outputLimit);
    call.between = std::chrono::seconds(options.progressEvery);
    call.progress = [&](const std::string& output) {
        NotifyManager("WATCHDOG=1");
        try {
            client.RespondToCommand(HalcyrREST::EncodeURL(command.id), command.tag, output, false,
                                    true);
        } catch (const std::exception& error) {
            Warn("no progress told: " + FailureOf(error, session.options.server).Line());
        }
    };
    const HandlerResult result = RunOrFail(call);
    task.state = Task::State::Ended;
    task.answer = result.output;
    task.succeeded = result.succeeded;
    journal.Note(task);
    Tell(task, result.succeeded ? "succeeded" : "failed");
}

HandlerResult Agent::RunOrFail(const HandlerCall& call) const {
    try {
        return RunHandler(call, signals);
    } catch (const LocalError& error) {
        Warn(error.what());
        HandlerResult result;
        result.output = std::string("[") + error.what() + "]";
        return result;
    }
}

void Agent::AnswerAll() {
    for (Task& task : journal.Tasks()) {
        // A stopping agent leaves its answers to the next one: the server may be slow.
        if (task.state != Task::State::Ended || signals.StopRequested()) {
            continue;
        }
        NotifyManager("WATCHDOG=1");
        client.RespondToCommand(HalcyrREST::EncodeURL(task.command.id), task.command.tag,
                                task.answer, true, task.succeeded);
        task.state = Task::State::Answered;
        journal.Note(task);
    }
}

void Agent::Postpone() {
    for (const std::string& id : ids) {
        try {
            client.DelayShutdown(id, options.postpone);
        } catch (const std::exception& error) {
            Warn("not postponed: " + FailureOf(error, session.options.server).Line());
        }
    }
}

void Agent::ShutDown() {
    if (options.onShutdown) {
        HandlerCall call;
        call.words = {*options.onShutdown};
        call.environment = {{"TAVO_ID", ids.front()}};
        call.longest = std::chrono::seconds(options.handlerTimeout);
        call.mostOutput = static_cast<std::size_t>(options.outputLimit);
        if (options.postpone > 0) {
            Postpone();
            call.between = std::chrono::milliseconds(options.postpone * 500);
            call.progress = [this](const std::string&) {
                NotifyManager("WATCHDOG=1");
                Postpone();
            };
        }
        const HandlerResult result = RunOrFail(call);
        if (!result.succeeded) {
            Warn("the shutdown's program failed: " + result.output);
        }
    }
    AnswerAll();
    for (const std::string& id : ids) {
        client.TurnPayloadOff(id);
    }
    shutDown = true;
    Json::Value line;
    line["event"] = "off";
    session.output.Result("off\n", line);
}

void Agent::WritePosition(const HalcyrREST::GPSInfo& position) const {
    const std::string unfinished = *options.positionFile + ".new";
    std::ofstream file(unfinished);
    file << JsonLine(JsonOf(position)) << '\n';
    file.close();
    // Whoever reads it never sees it half written.
    if (!file || std::rename(unfinished.c_str(), options.positionFile->c_str()) != 0) {
        Warn("the position cannot be written to '" + *options.positionFile + "'");
    }
}

void Agent::Away(const std::exception& error) {
    if (retrySeconds == 0) {
        Warn(FailureOf(error, session.options.server).Line() + "; carrying on");
    }
    retrySeconds = std::min(std::max(1L, retrySeconds * 2), options.retryMost);
    signals.Pause(std::chrono::seconds(retrySeconds));
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
