#include "core/Help.h"

#include "core/ExitCode.h"
#include "core/Text.h"

namespace Brenmoor {
namespace Tavo {

namespace {

constexpr std::size_t width = 80;

/// "  name      text", the text in a column of its own; under the name when that is too long.
std::string Row(const std::string& name, const std::string& text, std::size_t column) {
    const std::string wrapped = Wrapped(text, column, width);
    if (name.size() + 4 > column) {
        return "  " + name + "\n" + wrapped;
    }
    return "  " + name + std::string(column - 2 - name.size(), ' ') + wrapped.substr(column);
}

std::string Rows(const std::vector<Parameter>& parameters) {
    std::string rows;
    for (const Parameter& parameter : parameters) {
        rows += Row(Shown(parameter), Meaning(parameter), 28);
    }
    return rows;
}

std::string Section(const Style& style, const std::string& title, const std::string& text) {
    return text.empty() ? "" : "\n" + style.Bold(title) + "\n" + text;
}

} // namespace

std::string ProgramHelp(const std::vector<Parameter>& common, const std::vector<Command>& commands,
                        const Style& style) {
    std::string rows;
    for (const Command& command : commands) {
        rows += Row(command.name, command.summary, 28);
    }
    std::string variables;
    for (const Variable& variable : Variables()) {
        variables += Row(variable.name, variable.text, 28);
    }
    std::string codes;
    for (const ExitCodeRow& row : ExitCodes()) {
        codes += Row(std::to_string(static_cast<int>(row.code)), row.meaning, 6);
    }
    return style.Bold(std::string("Usage: ") + programSynopsis) + "\n" + programDetails + "\n" +
           Section(style, "Commands:", rows) +
           Section(style, "Options of every command:", Rows(common) + Rows(OwnParameters())) +
           Section(style, "Environment:", variables) + Section(style, "Exit codes:", codes) +
           "\n'tavo COMMAND --help' tells of one command.\n";
}

std::string CommandHelp(const Command& command, const Style& style) {
    std::string details;
    for (const std::string& paragraph : command.details) {
        details += "\n" + Wrapped(paragraph, 0, width);
    }
    std::string examples;
    for (const Example& example : command.examples) {
        examples += Wrapped(example.text + ":", 2, width) + "      " + example.line + "\n";
    }
    return style.Bold("Usage: " + Synopsis(command)) + "\n" + Sentence(command.summary) + "\n" +
           details + Section(style, "Arguments:", Rows(command.arguments)) +
           Section(style, "Options:", Rows(command.options)) +
           Section(style, "Examples:", examples) +
           "\n'tavo --help' tells of the options that every command has.\n";
}

} // namespace Tavo
} // namespace Brenmoor
