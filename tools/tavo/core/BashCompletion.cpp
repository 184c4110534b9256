#include "core/Completion.h"
#include "core/Text.h"

#include <algorithm>
#include <set>

namespace Brenmoor {
namespace Tavo {

namespace {

using Texts = std::vector<std::string>;

Texts NamesOf(const std::vector<Parameter>& options) {
    Texts names;
    for (const Parameter& option : options) {
        const Texts own = Names(option);
        names.insert(names.end(), own.begin(), own.end());
    }
    return names;
}

/// What may stand at the place of a command's arguments: words, files or nothing.
std::string ArgumentsOf(const Command& command) {
    for (const Parameter& argument : command.arguments) {
        if (argument.isFile) {
            return " files=yes";
        }
        if (!argument.choices.empty()) {
            return " words='" + Joined(argument.choices, " ") + "'";
        }
    }
    return "";
}

/// Names of options with a value, of all commands.
struct Valued {
    std::set<std::string> files;
    std::set<std::string> others;

    void Add(const std::vector<Parameter>& options) {
        for (const Parameter& option : options) {
            const Texts names = Names(option);
            if (!option.value.empty()) {
                (option.isFile ? files : others).insert(names.begin(), names.end());
            }
        }
    }

    static std::string Pattern(const std::set<std::string>& names) {
        return names.empty() ? "-" : Joined(Texts(names.begin(), names.end()), " | ");
    }
};

const char function[] = R"(_tavo() {
    local word=${COMP_WORDS[COMP_CWORD]} command='' options='' words='' files='' i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        @VALUED@) ((i++)) ;;
        -*) ;;
        *) command=${COMP_WORDS[i]} && break ;;
        esac
    done
    case $command in
    '') words='@COMMANDS@' ;;
@CASES@    esac
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    @FILES@) words='' files=yes ;;
    @OTHERS@) words='' files='' ;;
    *) [[ $word == -* ]] && words="@COMMON@ $options" files='' ;;
    esac
    local IFS=$' \t\n'
    COMPREPLY=()
    if [[ -n $files ]]; then
        IFS=$'\n'
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$word"))
    else
        COMPREPLY=($(compgen -W "$words" -- "$word"))
    fi
}
complete -F _tavo tavo
)";

} // namespace

std::string BashCompletion(const std::vector<Parameter>& common,
                           const std::vector<Command>& commands) {
    Valued valued;
    valued.Add(common);
    Texts names;
    std::string cases;
    for (const Command& command : commands) {
        valued.Add(command.options);
        names.push_back(command.name);
        cases += "    " + command.name + ") options='" + Joined(NamesOf(command.options), " ") +
                 "'" + ArgumentsOf(command) + " ;;\n";
    }
    std::set<std::string> all = valued.files;
    all.insert(valued.others.begin(), valued.others.end());
    Texts shared = NamesOf(common);
    const Texts own = NamesOf(OwnParameters());
    shared.insert(shared.end(), own.begin(), own.end());
    return "# bash completion for tavo\n" +
           Filled(function, {{"@VALUED@", Valued::Pattern(all)},
                             {"@COMMANDS@", Joined(names, " ")},
                             {"@CASES@", cases},
                             {"@FILES@", Valued::Pattern(valued.files)},
                             {"@OTHERS@", Valued::Pattern(valued.others)},
                             {"@COMMON@", Joined(shared, " ")}});
}

} // namespace Tavo
} // namespace Brenmoor
