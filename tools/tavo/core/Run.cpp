#include "core/Run.h"

#include "core/CommandLine.h"
#include "core/Failure.h"
#include "core/Help.h"
#include "core/Session.h"
#include "shared/StandardStreams.h"

#include <csignal>
#include <iostream>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

namespace {

void Serve(const Request& request, const CommonOptions& options,
           const std::vector<Parameter>& common, const std::vector<Command>& commands) {
    const Style style(STDOUT_FILENO);
    if (request.kind == Request::Kind::Version) {
        Print("tavo " TAVO_VERSION "\n");
    } else if (request.kind == Request::Kind::Help) {
        Print(request.command == nullptr ? ProgramHelp(common, commands, style)
                                         : CommandHelp(*request.command, style));
    } else {
        if (options.json && options.quiet) {
            throw UsageError("--json and --quiet exclude each other");
        }
        Session session(options, request.command->name);
        request.command->run(session);
    }
}

ExitCode Tell(Failure failure, const Command* command) {
    const std::string name = command == nullptr ? "tavo" : "tavo " + command->name;
    if (failure.code == ExitCode::Usage && failure.hint.empty()) {
        failure.hint = "see '" + name + " --help'";
    }
    std::cerr << Style(STDERR_FILENO).Red(name + ":") + " " + failure.Line() + "\n";
    return failure.code;
}

} // namespace

int Run(const std::vector<std::string>& arguments, const std::vector<Command>& commands) {
    FillStandardStreams();
    // A closed pipe is a failed write, told as any other.
    std::signal(SIGPIPE, SIG_IGN);
    CommonOptions options;
    const std::vector<Parameter> common = CommonParameters(options);
    const Command* command = nullptr;
    ExitCode code = ExitCode::Done;
    try {
        const Request request = ReadCommandLine(arguments, common, commands, command);
        Serve(request, options, common, commands);
    } catch (const std::exception& error) {
        code = Tell(FailureOf(error, options.server), command);
    }
    return static_cast<int>(code);
}

} // namespace Tavo
} // namespace Brenmoor
