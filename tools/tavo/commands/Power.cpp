#include "commands/Commands.h"
#include "core/Session.h"
#include "core/Text.h"

#include <memory>

namespace Brenmoor {
namespace Tavo {

namespace {

struct PowerOptions {
    std::string state;
    std::optional<std::string> switchName;
};

void SwitchPower(Session& session, const PowerOptions& options) {
    const std::string& id = session.Id();
    const bool on = options.state == "on";
    Json::Value result;
    result["id"] = id;
    result["on"] = on;
    result["switch"] = Json::Value::null;
    std::string shown = "power";
    auto& client = session.Client();
    if (options.switchName.has_value()) {
        session.Transfer([&] { client.SetPayloadKELDSwitch(id, *options.switchName, on); });
        result["switch"] = *options.switchName;
        shown = "switch '" + Escaped(*options.switchName) + "'";
    } else {
        session.Transfer([&] { client.SetPayloadKELDSwitch(id, on); });
    }
    session.output.Result(Escaped(id) + ": " + shown + " is " + options.state + "\n", result);
}

} // namespace

Command PowerCommand() {
    const auto options = std::make_shared<PowerOptions>();
    Command command;
    command.name = "power";
    command.summary = "switch the payload's power, or one of its switches";
    command.arguments = {
        {"STATE", "", "what to switch it to", &options->state, {"on", "off"}, true}};
    command.options = {
        {"--switch", "NAME", "this switch instead of the payload's own", &options->switchName}};
    command.examples = {
        {"Power up payload P1", "tavo power on --server 10.0.0.2:8080 --id P1"},
        {"Switch its pump off, with TAVO_SERVER and TAVO_ID set", "tavo power off --switch pump"},
    };
    command.run = [options](Session& session) {
        SwitchPower(session, *options);
    };
    return command;
}

Command OffCommand() {
    Command command;
    command.name = "off";
    command.summary = "ask the server to switch the payload off";
    command.details = {"A payload does so at the end of its work, when it has been told to shut "
                       "down and is ready."};
    command.examples = {{"Let payload P1 be switched off", "tavo off --id P1"}};
    command.run = [](Session& session) {
        const std::string& id = session.Id();
        auto& client = session.Client();
        session.Transfer([&] { client.TurnPayloadOff(id); });
        Json::Value result;
        result["id"] = id;
        session.output.Result(Escaped(id) + ": to be switched off\n", result);
    };
    return command;
}

Command DelayShutdownCommand() {
    const auto delay = std::make_shared<long>();
    Command command;
    command.name = "delay-shutdown";
    command.summary = "ask the server to postpone the payload's shutdown";
    command.arguments = {
        {"DELAY", "", "how long, in the server's unit; may be negative", delay.get(), {}, true}};
    command.examples = {{"Ask for 30 more", "tavo delay-shutdown 30 --id P1"}};
    command.run = [delay](Session& session) {
        const std::string& id = session.Id();
        auto& client = session.Client();
        session.Transfer([&] { client.DelayShutdown(id, *delay); });
        Json::Value result;
        result["id"] = id;
        result["delay"] = static_cast<Json::Int64>(*delay);
        session.output.Result(
            Escaped(id) + ": shutdown postponed by " + std::to_string(*delay) + "\n", result);
    };
    return command;
}

} // namespace Tavo
} // namespace Brenmoor
