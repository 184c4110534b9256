#include "agent/Agent.h"
#include "commands/Commands.h"
#include "core/Failure.h"

#include <cstdlib>
#include <memory>

namespace Brenmoor {
namespace Tavo {

namespace {

void RequireRange(const char* name, long value, long least, long most) {
    if (value < least || value > most) {
        throw UsageError(std::string(name) + " needs a number from " + std::to_string(least) +
                         " to " + std::to_string(most));
    }
}

/// The service manager names a folder for what is to last.
std::string DefaultJournal() {
    const char* const folder = std::getenv("STATE_DIRECTORY");
    return folder == nullptr ? "tavo-agent.journal" : std::string(folder) + "/agent.journal";
}

void RunAgent(Session& session, const AgentOptions& options) {
    constexpr long day = 86400;
    RequireRange("--poll", options.pollSeconds, 1, 3600);
    RequireRange("--handler-timeout", options.handlerTimeout, 1, day);
    RequireRange("--output-limit", options.outputLimit, 0, 16L * 1024 * 1024);
    RequireRange("--progress-every", options.progressEvery, 0, day);
    RequireRange("--postpone", options.postpone, 0, day);
    RequireRange("--retry-most", options.retryMost, 1, 3600);
    AgentOptions filled = options;
    if (filled.journal.empty()) {
        filled.journal = DefaultJournal();
    }
    Agent(session, filled).Run();
}

std::vector<Parameter> Options(AgentOptions& options) {
    return {
        {"--poll", "SECONDS", "how long a poll is held by the server (default: 30)",
         &options.pollSeconds},
        {"--handler-timeout", "SECONDS", "the most time for one command (default: 600)",
         &options.handlerTimeout},
        {"--output-limit", "BYTES", "the most output to answer with (default: 65536)",
         &options.outputLimit},
        {"--progress-every", "SECONDS",
         "answer 'not complete yet' with the new output this often (default: not at all)",
         &options.progressEvery},
        {"--on-shutdown",
         "PROGRAM",
         "run this before the payload is switched off",
         &options.onShutdown,
         {},
         false,
         true},
        {"--postpone", "SECONDS", "postpone the shutdown by this while that runs (default: 0)",
         &options.postpone},
        {"--position-file",
         "FILE",
         "keep the newest position in this file",
         &options.positionFile,
         {},
         false,
         true},
        {"--journal",
         "FILE",
         "what became of each command (default: tavo-agent.journal, or agent.journal in "
         "STATE_DIRECTORY)",
         &options.journal,
         {},
         false,
         true},
        {"--retry-most", "SECONDS", "the longest pause while the server is away (default: 60)",
         &options.retryMost},
    };
}

} // namespace

Command AgentCommand() {
    const auto options = std::make_shared<AgentOptions>();
    Command command;
    command.name = "agent";
    command.summary = "be a payload: poll, have commands handled, answer them";
    command.details = {
        "Each command is handed to HANDLER, one after the other: its text in TAVO_COMMAND and on "
        "standard input, its tag, payload and kind (plain or file) in TAVO_TAG, TAVO_ID and "
        "TAVO_KIND. What the handler writes is the answer, and its exit code tells whether the "
        "command succeeded. No shell is involved; put -- before the handler.",
        "A command is on disk before it is acted upon. After a crash those that were not begun are "
        "run, those that were are answered as interrupted and never run again. A command with the "
        "id, tag and text of an earlier one is taken for the same one, unless its tag is empty.",
        "SIGTERM and SIGINT end the agent, at the latest two seconds after a poll's time. So does "
        "a shutdown of the payload."};
    Parameter handler{"HANDLER", "", "the program that handles a command, and its arguments",
                      &options->handler};
    handler.isRequired = true;
    handler.isFile = true;
    handler.takesRest = true;
    command.arguments = {handler};
    command.options = Options(*options);
    command.examples = {
        {"Answer each command with what a script makes of it",
         "tavo agent --id P1 -- ./handle-command"},
        {"Tell progress every ten seconds",
         "tavo agent --id P1 --progress-every 10 -- python3 handler.py"},
        {"Keep the newest position in a file",
         "tavo agent --id P1 --position-file /run/position.json -- ./handle"},
    };
    command.run = [options](Session& session) {
        RunAgent(session, *options);
    };
    return command;
}

} // namespace Tavo
} // namespace Brenmoor
