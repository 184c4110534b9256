#include "Orders.h"
#include "wire/EscapedText.h"

#include <algorithm>
#include <limits>

namespace Brenmoor {
namespace TavoSimulator {

Reply AnswerOff(World& world, const Request& request) {
    world.payloads.Change(request.Filled("id"), [](Payload& payload) {
        payload.off = true;
        payload.shutdownAt.reset();
    });
    return Ok();
}

Reply AnswerPower(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    const std::string& wanted = request.Filled("cmd");
    if (wanted != "on" && wanted != "off") {
        throw BadRequest("Parameter 'cmd' must be on or off, not '" + Escape(wanted) + "'");
    }
    const bool on = wanted == "on";
    if (request.Find("sw") != nullptr) {
        const std::string& name = request.Filled("sw");
        world.payloads.Change(id, [&](Payload& payload) { payload.switches[name] = on; });
    } else {
        world.payloads.Change(id, [on](Payload& payload) {
            payload.mainSwitch = on;
            payload.off = payload.off && !on;
        });
    }
    return Ok();
}

Reply AnswerScript(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    RunScript script;
    script.command = request.Filled("cmd");
    script.output =
        world.scripts.Output(id, script.command, world.clock.UnixSeconds(world.clock.Seconds()));
    const std::size_t size = script.command.size() + script.output.size();
    world.payloads.Change(id, [&](Payload& payload) { payload.scripts.Add(script, size); });
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
