#include "Orders.h"
#include "wire/EscapedText.h"

#include <algorithm>
#include <limits>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// A rule comes before what could be run for real.
RunScript Run(World& world, const std::string& id, const std::string& command) {
    RunScript script;
    script.command = command;
    const auto canned =
        world.scripts.Output(id, command, world.clock.UnixSeconds(world.clock.Seconds()));
    if (canned) {
        script.output = *canned;
    } else if (world.settings.scriptFolder.empty()) {
        script.output = "simulated output of '" + Escape(command) + "'\nnothing was run\n";
    } else {
        const ScriptRun run =
            RunScriptIn(world.settings.scriptFolder, command, world.settings.scriptLimits,
                        [&world] { return world.changes.Closed(); });
        script.output = run.output;
        script.exitStatus = run.exitStatus;
        script.killed = run.killed;
    }
    return script;
}

} // namespace

Reply AnswerOff(World& world, const Request& request) {
    world.payloads.Change(request.Filled("id"), [](Payload& payload) {
        payload.off = true;
        payload.shutdownAt.reset();
    });
    return Ok();
}

void TurnSwitch(Payload& payload, const std::string& name, bool on) {
    constexpr std::size_t most = 1000;
    if (name.empty()) {
        payload.mainSwitch = on;
        payload.off = payload.off && !on;
        return;
    }
    if (payload.switches.size() >= most && payload.switches.count(name) == 0) {
        throw Forbidden("There are " + std::to_string(most) +
                        " switches already, which is the most");
    }
    payload.switches[name] = on;
}

Reply AnswerPower(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    const std::string& wanted = request.Filled("cmd");
    if (wanted != "on" && wanted != "off") {
        throw BadRequest("Parameter 'cmd' must be on or off, not '" + Escape(wanted) + "'");
    }
    const bool on = wanted == "on";
    const std::string name = request.Find("sw") == nullptr ? "" : request.Filled("sw");
    world.payloads.Change(id, [&](Payload& payload) { TurnSwitch(payload, name, on); });
    return Ok();
}

Reply AnswerScript(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    const RunScript script = Run(world, id, request.Filled("cmd"));
    const std::size_t size = script.command.size() + script.output.size();
    world.payloads.Change(id, [&](Payload& payload) { payload.scripts.Add(script, size); });
    if (!script.killed.empty()) {
        throw Refusal(500, "Internal Server Error", "The script was killed: " + script.killed);
    }
    Reply reply;
    reply.body = script.output;
    return reply;
}

Reply AnswerMetaDone(World& world, const Request& request) {
    world.payloads.Change(request.Filled("id"),
                          [](Payload& payload) { payload.registrationComplete = true; });
    return Ok();
}

Reply AnswerOffDelay(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    const auto delaySeconds =
        static_cast<double>(request.Number("delay", std::numeric_limits<std::int64_t>::min()));
    const double now = world.clock.Seconds();
    world.payloads.Change(id, [&](Payload& payload) {
        if (payload.shutdownAt) {
            payload.shutdownAt = std::max(*payload.shutdownAt, now) + delaySeconds;
            payload.shutdownTold = false;
        }
    });
    return Ok();
}

} // namespace TavoSimulator
} // namespace Brenmoor
