#include "core/CommandLine.h"

#include "core/Failure.h"
#include "core/Text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

namespace Brenmoor {
namespace Tavo {

namespace {

using Values = std::vector<std::string>;

/// How messages call a parameter: its long name.
std::string NameOf(const Parameter& parameter) {
    return parameter.name.substr(parameter.name.find(',') + 1);
}

void Check(const Parameter& parameter, const std::string& value) {
    const Values& choices = parameter.choices;
    if (!choices.empty() && std::find(choices.begin(), choices.end(), value) == choices.end()) {
        throw UsageError(NameOf(parameter) + " is " + Joined(choices, " or ") + ", not '" + value +
                         "'");
    }
}

long NumberIn(const Parameter& parameter, const std::string& value) {
    long number = 0;
    const char* const end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || rest != end) {
        throw UsageError(NameOf(parameter) + " needs a whole number, not '" + value + "'");
    }
    return number;
}

/// Stores what the command line has for a parameter, as it stands there.
struct Store {
    const Parameter& parameter;
    const Values& values;

    void operator()(bool* target) const {
        RefuseValue();
        *target = true;
    }
    void operator()(int* target) const {
        RefuseValue();
        *target = static_cast<int>(values.size());
    }
    void operator()(long* target) const {
        *target = NumberIn(parameter, Only());
    }
    void operator()(std::string* target) const {
        *target = Only();
    }
    void operator()(std::optional<std::string>* target) const {
        *target = Only();
    }
    void operator()(Values* target) const {
        *target = values;
    }

    /// The parser gives "true" to a flag; "--json=false" would otherwise switch it on.
    void RefuseValue() const {
        if (values.back() != "true") {
            throw UsageError(NameOf(parameter) + " takes no value");
        }
    }

    const std::string& Only() const {
        if (values.size() > 1) {
            throw UsageError(NameOf(parameter) + " is given twice");
        }
        return values.front();
    }
};

bool IsFlag(const Parameter& parameter) {
    return std::holds_alternative<bool*>(parameter.target) ||
           std::holds_alternative<int*>(parameter.target);
}

/// The parser keeps the values as texts, and is asked for them when the whole line is read.
class Parser {
public:
    Parser(const std::vector<Parameter>& common, const std::vector<Command>& commands) {
        app.set_help_flag("-h,--help");
        app.set_version_flag("--version", "");
        app.fallthrough();
        app.require_subcommand(1);
        for (const Parameter& parameter : common) {
            AddOption(app, parameter);
        }
        for (const Command& command : commands) {
            CLI::App& subcommand = *app.add_subcommand(command.name);
            for (const Parameter& argument : command.arguments) {
                if (!argument.takesRest) {
                    AddArgument(subcommand, argument);
                }
            }
            for (const Parameter& option : command.options) {
                AddOption(subcommand, option);
            }
        }
    }

    void StoreAll() const {
        for (const auto& [parameter, option] : known) {
            const Values& values = option->results();
            for (const std::string& value : values) {
                Check(*parameter, value);
            }
            if (!values.empty()) {
                std::visit(Store{*parameter, values}, parameter->target);
            }
        }
    }

    CLI::App app{"", "tavo"};

private:
    CLI::Option& Add(CLI::App& to, const Parameter& parameter) {
        CLI::Option& option = *to.add_option(parameter.name);
        option.multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        known.emplace_back(&parameter, &option);
        return option;
    }

    void AddOption(CLI::App& to, const Parameter& parameter) {
        CLI::Option& option = Add(to, parameter);
        if (IsFlag(parameter)) {
            option.expected(0);
            return;
        }
        option.expected(1)->allow_extra_args(false)->type_name(parameter.value);
        option.envname(parameter.variable);
    }

    void AddArgument(CLI::App& to, const Parameter& parameter) {
        CLI::Option& option = Add(to, parameter);
        option.required(parameter.isRequired);
        if (std::holds_alternative<Values*>(parameter.target)) {
            option.expected(parameter.isRequired ? 1 : 0, CLI::detail::expected_max_vector_size);
        }
        // Otherwise a value like "[a,b]" would be taken for a list.
        option.allow_extra_args(false);
    }

    std::vector<std::pair<const Parameter*, const CLI::Option*>> known;
};

const Command* Chosen(const CLI::App& app, const std::vector<Command>& commands) {
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? nullptr : FindCommand(commands, chosen.front()->get_name());
}

/// The parser's own words, without its hints about help.
[[noreturn]] void ThrowUsage(const CLI::App& app, const Command* command,
                             const CLI::ParseError& error) {
    const Values rest = app.remaining(true);
    if (!rest.empty()) {
        const std::string what = rest.front().rfind('-', 0) == 0 ? "unknown option"
                                 : command == nullptr            ? "unknown command"
                                                                 : "unexpected argument";
        throw UsageError(what + " '" + rest.front() + "'");
    }
    if (command == nullptr) {
        throw UsageError("no command given");
    }
    throw UsageError(error.what());
}

/// The argument of a command that takes all behind "--", or null.
const Parameter* RestOf(const Command& command) {
    for (const Parameter& argument : command.arguments) {
        if (argument.takesRest) {
            return &argument;
        }
    }
    return nullptr;
}

/// Takes what stands behind "--" out of the arguments of a command that has its use for it. The
/// parser would look for options in it.
Values TakeRest(Values& arguments, const std::vector<Command>& commands) {
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    const bool isTaken = mark != arguments.end() &&
                         std::any_of(commands.begin(), commands.end(), [&](const Command& command) {
                             return RestOf(command) != nullptr &&
                                    std::find(arguments.begin(), mark, command.name) != mark;
                         });
    if (!isTaken) {
        return {};
    }
    const Values rest(std::next(mark), arguments.end());
    arguments.erase(mark, arguments.end());
    return rest;
}

void StoreRest(const Command& command, const Values& rest) {
    const Parameter* const parameter = RestOf(command);
    if (parameter == nullptr) {
        return;
    }
    if (parameter->isRequired && rest.empty()) {
        throw UsageError(parameter->name + " is required, behind --");
    }
    std::visit(Store{*parameter, rest}, parameter->target);
}

} // namespace

Request ReadCommandLine(const std::vector<std::string>& arguments,
                        const std::vector<Parameter>& common, const std::vector<Command>& commands,
                        const Command*& command) {
    Parser parser(common, commands);
    Values own = arguments;
    const Values rest = TakeRest(own, commands);
    CLI::App& app = parser.app;
    command = nullptr;
    try {
        // The parser takes them from the end.
        app.parse(Values(own.rbegin(), own.rend()));
    } catch (const CLI::CallForHelp&) {
        return {Request::Kind::Help, Chosen(app, commands)};
    } catch (const CLI::CallForVersion&) {
        return {Request::Kind::Version, nullptr};
    } catch (const CLI::ParseError& error) {
        command = Chosen(app, commands);
        ThrowUsage(app, command, error);
    }
    command = Chosen(app, commands);
    parser.StoreAll();
    StoreRest(*command, rest);
    return {Request::Kind::Run, command};
}

} // namespace Tavo
} // namespace Brenmoor
