#include "core/Completion.h"
#include "core/Text.h"

namespace Brenmoor {
namespace Tavo {

namespace {

/// The text within a rule for _arguments, which stands in single quotes.
std::string Quoted(const std::string& text) {
    std::string quoted;
    for (const char character : text) {
        if (character == '\'') {
            quoted += "'\\''";
        } else if (character == '[' || character == ']' || character == ':') {
            quoted += std::string("\\") + character;
        } else {
            quoted += character;
        }
    }
    return quoted;
}

/// What zsh offers for a value.
std::string Action(const Parameter& parameter) {
    if (parameter.isFile) {
        return "_files";
    }
    return parameter.choices.empty() ? " " : "(" + Joined(parameter.choices, " ") + ")";
}

bool IsRepeatable(const Parameter& parameter) {
    return std::holds_alternative<int*>(parameter.target) ||
           std::holds_alternative<std::vector<std::string>*>(parameter.target);
}

/// A rule for _arguments for each name of each option.
std::string Rules(const std::vector<Parameter>& options) {
    std::string lines;
    for (const Parameter& option : options) {
        const std::vector<std::string> names = Names(option);
        const std::string others = IsRepeatable(option) ? "*" : "(" + Joined(names, " ") + ")";
        const std::string value =
            option.value.empty() ? "" : ":" + Quoted(option.value) + ":" + Action(option);
        for (const std::string& name : names) {
            lines += "        '" + others + name + "[" + Quoted(option.text) + "]" + value + "'\n";
        }
    }
    return lines;
}

std::string Case(const Command& command) {
    std::string lines = "    " + command.name + ")\n        rules+=(\n" + Rules(command.options);
    int number = 0;
    for (const Parameter& argument : command.arguments) {
        const std::string place = IsRepeatable(argument) ? "*" : std::to_string(++number);
        lines += "        '" + place + ":" + Quoted(argument.name) + ":" + Action(argument) + "'\n";
    }
    return lines + "        ) ;;\n";
}

const char function[] = R"(#compdef tavo

_tavo() {
    local curcontext=$curcontext state line
    typeset -A opt_args
    local -a commands=(
@COMMANDS@    )
    local -a rules=(
@COMMON@    )
    _arguments -C $rules '1: :->command' '*::: :->argument' && return
    if [[ $state == command ]]; then
        _describe command commands
        return
    fi
    case $line[1] in
@CASES@    esac
    words=($line[1] "${words[@]}")
    ((CURRENT += 1))
    _arguments -s $rules
}

if [[ $funcstack[1] == _tavo ]]; then
    _tavo "$@"
else
    compdef _tavo tavo
fi
)";

} // namespace

std::string ZshCompletion(const std::vector<Parameter>& common,
                          const std::vector<Command>& commands) {
    std::string names;
    std::string cases;
    for (const Command& command : commands) {
        names += "        '" + command.name + ":" + Quoted(command.summary) + "'\n";
        cases += Case(command);
    }
    return Filled(function, {{"@COMMANDS@", names},
                             {"@COMMON@", Rules(common) + Rules(OwnParameters())},
                             {"@CASES@", cases}});
}

} // namespace Tavo
} // namespace Brenmoor
