#include "core/Man.h"

#include "core/ExitCode.h"
#include "core/Text.h"

#include <algorithm>
#include <cctype>

namespace Brenmoor {
namespace Tavo {

namespace {

/// The text as it stands in a line of roff.
std::string Roff(const std::string& text) {
    std::string roff = !text.empty() && (text[0] == '.' || text[0] == '\'') ? "\\&" : "";
    for (const char character : text) {
        switch (character) {
        case '\\':
            roff += "\\(rs";
            break;
        case '\'':
            roff += "\\(aq";
            break;
        case '-':
            roff += "\\-";
            break;
        default:
            roff += character;
        }
    }
    return roff;
}

std::string Heading(const std::string& page, const std::string& version) {
    std::string title = page;
    std::transform(title.begin(), title.end(), title.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return ".TH " + Roff(title) + " 1 \"\" \"tavo " + version + "\" \"User Commands\"\n";
}

std::string Section(const std::string& title, const std::string& text) {
    return text.empty() ? "" : ".SH " + title + "\n" + text;
}

std::string Item(const std::string& name, const std::string& text) {
    return ".TP\n.B " + Roff(name) + "\n" + Roff(Sentence(text)) + "\n";
}

std::string Items(const std::vector<Parameter>& parameters) {
    std::string items;
    for (const Parameter& parameter : parameters) {
        items += Item(Shown(parameter), Meaning(parameter));
    }
    return items;
}

std::string Examples(const std::vector<Example>& examples) {
    std::string text;
    for (const Example& example : examples) {
        text += ".PP\n" + Roff(example.text) + ":\n.PP\n.nf\n.RS\n" + Roff(example.line) +
                "\n.RE\n.fi\n";
    }
    // The first paragraph needs no break before it.
    return text.empty() ? text : text.substr(4);
}

std::string Reference(const std::string& page) {
    return ".BR " + Roff(page) + " (1)";
}

} // namespace

std::string ProgramPage(const std::vector<Parameter>& common, const std::vector<Command>& commands,
                        const std::string& version) {
    std::string items;
    std::string others;
    std::vector<Example> examples;
    for (const Command& command : commands) {
        items += Item(command.name, command.summary);
        others += Reference("tavo-" + command.name) + ",\n";
        examples.insert(examples.end(), command.examples.begin(),
                        command.examples.begin() + (command.examples.empty() ? 0 : 1));
    }
    std::string variables;
    for (const Variable& variable : Variables()) {
        variables += Item(variable.name, variable.text);
    }
    std::string codes;
    for (const ExitCodeRow& row : ExitCodes()) {
        codes += Item(std::to_string(static_cast<int>(row.code)), row.meaning);
    }
    return Heading("tavo", version) + Section("NAME", "tavo \\- " + Roff(programSummary) + "\n") +
           Section("SYNOPSIS", Roff(programSynopsis) + "\n") +
           Section("DESCRIPTION", Roff(programDetails) + "\n") + Section("COMMANDS", items) +
           Section("OPTIONS", Items(common) + Items(OwnParameters())) +
           Section("ENVIRONMENT", variables) + Section("EXIT STATUS", codes) +
           Section("EXAMPLES", Examples(examples)) +
           Section("SEE ALSO", others + Reference("tavo-simulator") + "\n");
}

std::string CommandPage(const Command& command, const std::string& version) {
    const std::string page = "tavo-" + command.name;
    std::string details = Roff(Sentence(command.summary)) + "\n";
    for (const std::string& paragraph : command.details) {
        details += ".PP\n" + Roff(paragraph) + "\n";
    }
    return Heading(page, version) +
           Section("NAME", Roff(page) + " \\- " + Roff(command.summary) + "\n") +
           Section("SYNOPSIS", Roff(Synopsis(command)) + "\n") + Section("DESCRIPTION", details) +
           Section("ARGUMENTS", Items(command.arguments)) +
           Section("OPTIONS", Items(command.options) +
                                  ".PP\nOptions of every command are told by\n" +
                                  Reference("tavo") + ".\n") +
           Section("EXIT STATUS", "As told by\n" + Reference("tavo") + ".\n") +
           Section("EXAMPLES", Examples(command.examples)) +
           Section("SEE ALSO", Reference("tavo") + "\n");
}

} // namespace Tavo
} // namespace Brenmoor
