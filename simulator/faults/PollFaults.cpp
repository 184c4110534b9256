#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// A list of so many good commands.
std::string Commands(int count) {
    std::string list = "$COMMAND";
    for (int i = 1; i < count; ++i) {
        list += ", $COMMAND";
    }
    return "[" + list + "]";
}

} // namespace

std::vector<Fault> PollFaults() {
    return {
        Answer("error", "the server tells an error", R"({"error": "no disk"})"),
        Answer("error-empty", "an error without words", R"({"error": ""})"),
        Answer("error-number", "an error that is a number", R"({"error": 7})"),
        Answer("error-object", "an error that is an object", R"({"error": {"code": 7}})"),
        Answer("error-null", "an error that is null, with a command",
               R"({"error": null, "commands": [$COMMAND]})"),
        Answer("error-with-commands", "an error and a command",
               R"({"error": "no disk", "commands": [$COMMAND]})"),
        Answer("timeout", "time-out at once", R"({"timeout": true})"),
        Answer("timeout-with-commands", "time-out and a command",
               R"({"timeout": true, "commands": [$COMMAND]})"),
        Answer("timeout-false", "a time-out that is false, and nothing else",
               R"({"timeout": false})"),
        Answer("timeout-null", "a time-out that is null", R"({"timeout": null})"),
        Answer("timeout-number", "a time-out that is 1", R"({"timeout": 1})"),
        Answer("timeout-text", "a time-out that is a text", R"({"timeout": "true"})"),
        Answer("timeout-list", "a time-out that is a list", R"({"timeout": [true]})"),
        Answer("timeout-object", "a time-out that is an object", R"({"timeout": {"a": true}})"),
        Answer("shutdown", "a shutdown out of the blue", R"({"shutdown": true})"),
        Answer("shutdown-false", "a shutdown that is false", R"({"shutdown": false})"),
        Answer("shutdown-null", "a shutdown that is null", R"({"shutdown": null})"),
        Answer("shutdown-number", "a shutdown that is 1", R"({"shutdown": 1})"),
        Answer("shutdown-text", "a shutdown that is a text, with a command",
               R"({"shutdown": "true", "commands": [$COMMAND]})"),
        Answer("shutdown-list", "a shutdown that is a list", R"({"shutdown": [true]})"),
        Answer("shutdown-object", "a shutdown that is an object", R"({"shutdown": {"a": true}})"),
        Answer("members-unknown", "only members that nobody knows",
               R"({"weather": "fine", "depth": 12})"),
        Answer("members-other-case", "the members' names in capitals",
               R"({"TIMEOUT": true, "COMMANDS": [$COMMAND]})"),
        Answer("commands-object", "the commands are one object", R"({"commands": $COMMAND})"),
        Answer("commands-text", "the commands are a text", R"({"commands": "'t1'go"})"),
        Answer("commands-number", "the commands are a number", R"({"commands": 1})"),
        Answer("commands-null", "the commands are null", R"({"commands": null})"),
        Answer("commands-empty", "no commands in their list", R"({"commands": []})"),
        Answer("commands-too-many", "50 commands, asked for or not",
               "{\"commands\": " + Commands(50) + "}"),
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
