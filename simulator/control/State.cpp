#include "State.h"
#include "PayloadView.h"
#include "TrafficView.h"
#include "operations/Poll.h"
#include "wire/Json.h"

#include <memory>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr std::chrono::milliseconds betweenEvents(200);
constexpr std::chrono::milliseconds longestSilence(1000);

Json::Value Optional(const std::optional<double>& value) {
    return value ? Json::Value(*value) : Json::Value();
}

Json::Value ArmedJson(const World& world) {
    Json::Value armed(Json::arrayValue);
    for (const ArmedFault& fault : world.faults.Armed()) {
        armed.append(FaultJson(fault));
    }
    return armed;
}

Json::Value ScriptsJson(const World& world) {
    Json::Value scripts(Json::arrayValue);
    for (const ScriptRule& rule : world.scripts.Rules()) {
        Json::Value json(Json::objectValue);
        json["match"] = rule.match;
        json["output"] = rule.output;
        scripts.append(json);
    }
    return scripts;
}

void SendEvent(std::ostream& out, const char* name, const Json::Value& data) {
    out << "event: " << name << "\ndata: " << JsonLine(data) << "\n\n";
}

/// Counts one who listens, while it is there.
class Listener {
public:
    explicit Listener(std::atomic<int>& theCount) : count(theCount) {
        // Since each occupies a thread.
        constexpr int most = 32;
        if (++count > most) {
            --count;
            throw Refusal(503, "Service Unavailable",
                          std::to_string(most) +
                              " event streams are open already, which is the limit");
        }
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() {
        --count;
    }

private:
    std::atomic<int>& count;
};

void SendEvents(World& world, std::ostream& out) {
    std::uint64_t trafficSeen = 0;
    world.traffic.ChangedSince(trafficSeen); // those of before are asked for by whoever wants them
    std::uint64_t changesSeen = 0;
    while (!world.changes.Closed() && out.good()) {
        for (const TrafficEntry& entry : world.traffic.ChangedSince(trafficSeen)) {
            SendEvent(out, "traffic", SummaryJson(world.clock, entry));
        }
        SendEvent(out, "state", StateJson(world));
        out.flush();
        // The vehicle moves and time passes even when nothing happens.
        world.changes.AwaitClose(betweenEvents);
        changesSeen = world.changes.Await(changesSeen, longestSilence - betweenEvents);
    }
}

} // namespace

Json::Value ClockJson(const World& world) {
    const double now = world.clock.Seconds();
    Json::Value json(Json::objectValue);
    json["elapsedSeconds"] = now;
    json["unixSeconds"] = world.clock.UnixSeconds(now);
    json["speed"] = world.clock.Speed();
    return json;
}

Json::Value VehicleJson(const World& world) {
    const VehicleState state = world.vehicle.StateAt(world.clock.Seconds());
    Json::Value json = PositionJson(world.clock, state.fix);
    json["error"] = state.fix.error.empty() ? Json::Value() : Json::Value(state.fix.error);
    json["courseDegrees"] = state.courseDegrees;
    json["speedMetresPerSecond"] = state.speedMetresPerSecond;
    json["noiseMetres"] = state.noiseMetres;
    json["fixIntervalSeconds"] = state.fixIntervalSeconds;
    json["track"] = Json::arrayValue;
    for (const Place& place : state.track) {
        Json::Value pair(Json::arrayValue);
        pair.append(place.latitudeDegrees);
        pair.append(place.longitudeDegrees);
        json["track"].append(pair);
    }
    return json;
}

Json::Value FaultJson(const ArmedFault& armed) {
    Json::Value json(Json::objectValue);
    json["number"] = Json::UInt64{armed.number};
    json["fault"] = armed.fault;
    json["operation"] = armed.operation;
    json["count"] = armed.count ? Json::Value(Json::UInt64{*armed.count}) : Json::Value();
    json["probability"] = Optional(armed.probability);
    json["hits"] = Json::UInt64{armed.hits};
    return json;
}

Json::Value StateJson(const World& world) {
    Json::Value state(Json::objectValue);
    state["version"] = TAVO_VERSION;
    state["clock"] = ClockJson(world);
    state["vehicle"] = VehicleJson(world);
    state["heldPolls"] = Json::UInt64{world.payloads.HeldPolls()};
    state["payloads"] = PayloadsJson(world);
    state["faults"] = ArmedJson(world);
    state["scripts"] = ScriptsJson(world);
    state["allowScripts"] = !world.settings.scriptFolder.empty();
    state["dataFolder"] = world.files.Folder().string();
    return state;
}

Reply ShowState(World& world, const Request&) {
    return JsonReply(StateJson(world));
}

Reply ShowFaults(World& world, const Request&) {
    Json::Value json(Json::objectValue);
    for (const Fault& fault : FaultCatalogue()) {
        Json::Value row(Json::objectValue);
        row["name"] = fault.name;
        row["group"] = fault.group;
        row["summary"] = fault.summary;
        json["catalogue"].append(row);
    }
    json["armed"] = ArmedJson(world);
    return JsonReply(json);
}

Reply StreamEvents(World& world, const Request&) {
    const auto listener = std::make_shared<Listener>(world.listeners);
    Reply reply;
    reply.type = "text/event-stream";
    reply.stream = [&world, listener](std::ostream& out) {
        SendEvents(world, out);
    };
    return reply;
}

} // namespace TavoSimulator
} // namespace Brenmoor
