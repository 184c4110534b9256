#include "core/Description.h"

#include "core/Text.h"

#include <algorithm>

namespace Brenmoor {
namespace Tavo {

const char programSynopsis[] = "tavo COMMAND [OPTION]... [ARGUMENT]...";
const char programSummary[] = "talk to a vehicle's payload server as a payload does";
const char programDetails[] = "Talks to a vehicle's payload server as a payload does.";

std::vector<Parameter> CommonParameters(CommonOptions& options) {
    Parameter server{"-s,--server", "HOST[:PORT]", "the payload server", &options.server};
    server.variable = "TAVO_SERVER";
    Parameter id{"-i,--id", "ID", "the payload", &options.ids};
    id.variable = "TAVO_ID";
    return {
        server,
        id,
        {"--json", "", "print one line of JSON, for programs", &options.json},
        {"-q,--quiet", "", "print nothing but errors", &options.quiet},
        {"-v,--verbose", "", "show the library's log: requests, and replies too when given twice",
         &options.verbosity},
        {"--trace", "", "show libcurl's trace of the exchange", &options.trace},
    };
}

std::vector<Parameter> OwnParameters() {
    return {
        {"-h,--help", "", "print help and exit", static_cast<bool*>(nullptr)},
        {"--version", "", "print the version and exit", static_cast<bool*>(nullptr)},
    };
}

const Command* FindCommand(const std::vector<Command>& commands, const std::string& name) {
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const Command& command) { return command.name == name; });
    return found == commands.end() ? nullptr : &*found;
}

std::vector<std::string> Names(const Parameter& option) {
    const std::size_t comma = option.name.find(',');
    if (comma == std::string::npos) {
        return {option.name};
    }
    return {option.name.substr(0, comma), option.name.substr(comma + 1)};
}

std::string Shown(const Parameter& option) {
    return Joined(Names(option), ", ") + (option.value.empty() ? "" : " " + option.value);
}

std::string Meaning(const Parameter& parameter) {
    std::string text = parameter.text;
    if (!parameter.choices.empty()) {
        text += ": " + Joined(parameter.choices, " or ");
    }
    if (!parameter.variable.empty()) {
        text += " (default: $" + parameter.variable + ")";
    }
    if (std::holds_alternative<std::vector<std::string>*>(parameter.target) &&
        !parameter.value.empty()) {
        text += "; may be repeated";
    }
    return text;
}

std::string Synopsis(const Command& command) {
    std::string line = "tavo " + command.name + " [OPTION]...";
    for (const Parameter& argument : command.arguments) {
        std::string shown = argument.name;
        if (std::holds_alternative<std::vector<std::string>*>(argument.target)) {
            shown += "...";
        }
        line += argument.isRequired ? " " + shown : " [" + shown + "]";
    }
    return line;
}

std::vector<Variable> Variables() {
    return {
        {"TAVO_SERVER", "the payload server, unless --server names it"},
        {"TAVO_ID", "the payload, unless --id names it"},
        {"NO_COLOR", "unless empty, nothing is coloured"},
        {"TMPDIR", "the folder for temporary files, through which texts to send pass"},
        {"http_proxy, all_proxy, NO_PROXY", "as libcurl has them"},
    };
}

} // namespace Tavo
} // namespace Brenmoor
