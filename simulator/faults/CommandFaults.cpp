#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// An answer with this in the place of a command.
Fault Command(const char* name, const char* summary, const std::string& json) {
    return Answer(name, summary, "{\"commands\": [" + json + "]}");
}

/// The same, with a command of this text.
Fault CommandText(const char* name, const char* summary, const std::string& text) {
    return Command(name, summary, "{\"id\": $ID, \"command\": \"" + text + "\"}");
}

void LongText(Line& line, const Occasion& occasion) {
    const std::string text = "'t1'" + std::string(1000000, 'x');
    Answers("{\"commands\": [{\"id\": $ID, \"command\": \"" + text + "\"}]}")(line, occasion);
}

} // namespace

std::vector<Fault> CommandFaults() {
    return {
        Command("command-number", "a command is a number", "7"),
        Command("command-null", "a command is null", "null"),
        Command("command-list", "a command is a list", R"([$ID, "'t1'go"])"),
        Command("command-bad-behind-good", "a good command, one without tag, and a good one",
                R"($COMMAND, {"id": $ID, "command": "go"}, $COMMAND)"),
        Command("command-other-id", "a command for a payload that did not ask",
                R"({"id": "somebody-else", "command": "'t1'go"})"),
        Command("command-members-unknown", "a command with members that nobody knows",
                R"({"id": $ID, "command": "'t1'go", "urgent": true})"),
        Command("id-missing", "a command without id", R"({"command": "'t1'go"})"),
        Command("id-number", "a command's id is a number", R"({"id": 7, "command": "'t1'go"})"),
        Command("id-null", "a command's id is null", R"({"id": null, "command": "'t1'go"})"),
        Command("id-list", "a command's id is a list", R"({"id": [$ID], "command": "'t1'go"})"),
        Command("text-missing", "a command without text", R"({"id": $ID})"),
        Command("text-number", "a command's text is a number", R"({"id": $ID, "command": 7})"),
        Command("text-null", "a command's text is null", R"({"id": $ID, "command": null})"),
        CommandText("text-empty", "a command's text is empty", ""),
        {"text-1-mb", "a command's text has 1 MB", Fault::When::Instead, LongText},
        CommandText("tag-missing", "a command without tag", "go"),
        CommandText("tag-open", "a command's tag is not closed", "'t1 go"),
        CommandText("tag-mismatched", "a command's tag begins and ends in different quotes",
                    "'t1\\\"go"),
        CommandText("tag-empty", "a command's tag is empty, which is fine", "''go"),
        CommandText("tag-blank-before", "a blank before a command's tag", " 't1'go"),
        CommandText("tag-back-quotes", "a command's tag in back quotes", "`t1`go"),
        CommandText("tag-other-quote",
                    "a quote of the other kind in a command's tag, which is fine", "'t\\\"1'go"),
        CommandText("tag-alone", "a command's tag with nothing behind it", "'t1'"),
        CommandText("file-other-case", "a file's name behind FILE:, which is fine",
                    "FILE:'t1'go.sh"),
        CommandText("file-no-tag", "a file's name without tag", "file:go.sh"),
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
