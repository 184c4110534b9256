#include "commands/Commands.h"
#include "core/Session.h"

#include <memory>

namespace Brenmoor {
namespace Tavo {

Command ScriptCommand() {
    const auto script = std::make_shared<std::string>();
    Command command;
    command.name = "script";
    command.summary = "have the server run a script, and print its output";
    command.details = {"The script is one argument: quote it. Its output is printed as received."};
    command.arguments = {{"SCRIPT", "", "what to run", script.get(), {}, true}};
    command.examples = {
        {"How full is the vehicle's disk", "tavo script 'df -h /data' --id P1"},
        {"A script that begins with a dash", "tavo script --id P1 -- '-version'"},
    };
    command.run = [script](Session& session) {
        const std::string& id = session.Id();
        auto& client = session.Client();
        std::string output;
        session.Transfer([&] { output = client.RunScript(id, *script); });
        Json::Value result;
        result["id"] = id;
        result["output"] = output;
        session.output.Result(output, result);
    };
    return command;
}

} // namespace Tavo
} // namespace Brenmoor
