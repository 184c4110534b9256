#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Brenmoor {
namespace Tavo {

class Session;

/// Where a value of the command line goes: a flag's bool, a counted flag's int, a text, a text that
/// may be absent, a number, or texts that may be given several times.
using Target = std::variant<bool*, int*, long*, std::string*, std::optional<std::string>*,
                            std::vector<std::string>*>;

/// One option, flag or argument.
struct Parameter {
    std::string name;  ///< "-s,--server" or "--hex"; of an argument, what help calls it
    std::string value; ///< what help calls an option's value; empty for flags, arguments
    std::string text;  ///< what it means, without a full stop
    Target target;
    std::vector<std::string> choices = {}; ///< the only values allowed, unless empty
    bool isRequired = false;
    bool isFile = false;       ///< completion offers files
    std::string variable = {}; ///< of the environment, that gives the value when absent
    bool takesRest = false;    ///< an argument: all that stands behind "--", as it is
};

struct Example {
    std::string text;
    std::string line;
};

/// A subcommand: all that the command line, help, manual pages and completion know of it.
struct Command {
    std::string name;
    std::string summary;              ///< half a line, without a full stop
    std::vector<std::string> details; ///< paragraphs
    std::vector<Parameter> arguments;
    std::vector<Parameter> options;
    std::vector<Example> examples;
    std::function<void(Session& session)> run; ///< throws for every failure
};

/// What every subcommand takes.
struct CommonOptions {
    std::string server;
    std::vector<std::string> ids;
    bool json = false;
    bool quiet = false;
    int verbosity = 0; ///< 1 and 2 are the library's log levels 7 and 8
    bool trace = false;
};

std::vector<Parameter> CommonParameters(CommonOptions& options);

/// Options that the command line has of its own, for help and its kin; their targets are unused.
std::vector<Parameter> OwnParameters();

const Command* FindCommand(const std::vector<Command>& commands, const std::string& name);

extern const char programSynopsis[];
extern const char programSummary[];
extern const char programDetails[];

/// An option's names: "-s" and "--server".
std::vector<std::string> Names(const Parameter& option);

/// The option as help shows it: "-s, --server HOST[:PORT]".
std::string Shown(const Parameter& option);

/// All that is to be told of a parameter: its text, its choices, its default.
std::string Meaning(const Parameter& parameter);

/// The command line in short: "tavo power [OPTION]... STATE".
std::string Synopsis(const Command& command);

/// A variable of the environment that counts.
struct Variable {
    std::string name;
    std::string text;
};

std::vector<Variable> Variables();

} // namespace Tavo
} // namespace Brenmoor
