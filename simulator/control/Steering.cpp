#include "Steering.h"
#include "State.h"
#include "operations/Operations.h"
#include "operations/Orders.h"
#include "operations/Poll.h"
#include "wire/Json.h"

#include <limits>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr std::size_t largestBody = std::size_t{1024} * 1024;
constexpr double longestPlanSeconds = 1e9;
constexpr double greatestClockSpeed = 1e5;

Json::Value Body(const Request& request) {
    std::string text(largestBody + 1, '\0');
    request.body.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(request.body.gcount()));
    if (text.size() > largestBody) {
        throw TooLarge("The body is larger than " + std::to_string(largestBody) + " bytes");
    }
    return ParseObject(text, "The body");
}

Reply Done() {
    Json::Value done(Json::objectValue);
    done["ok"] = true;
    return JsonReply(done);
}

Place PlaceOf(const Json::Value& pair) {
    if (!pair.isArray() || pair.size() != 2 || !pair[0].isNumeric() || !pair[1].isNumeric() ||
        std::abs(pair[0].asDouble()) > 90 || std::abs(pair[1].asDouble()) > 180) {
        throw BadRequest("A waypoint must be a latitude and a longitude, as in [57.5, 2.0]");
    }
    return Place{pair[0].asDouble(), pair[1].asDouble()};
}

std::vector<Place> Waypoints(const Json::Value& list) {
    constexpr Json::ArrayIndex most = 1000;
    if (!list.isArray() || list.empty() || list.size() > most) {
        throw BadRequest("Member 'waypoints' must be an array of 1 to 1000 waypoints");
    }
    std::vector<Place> waypoints;
    for (const Json::Value& pair : list) {
        waypoints.push_back(PlaceOf(pair));
    }
    return waypoints;
}

Place PlaceOf(const Members& members) {
    return Place{members.Number("latitude", -90, 90), members.Number("longitude", -180, 180)};
}

std::vector<Place> Racetrack(const Json::Value& object) {
    if (!object.isObject()) {
        throw BadRequest("Member 'racetrack' must be an object");
    }
    const Members track(object,
                        {"latitude", "longitude", "lengthMetres", "widthMetres", "courseDegrees"});
    return Track::Racetrack(PlaceOf(track), track.Number("lengthMetres", 1, 100000),
                            track.Number("widthMetres", 1, 100000),
                            track.Number("courseDegrees", 0, 360))
        .Waypoints();
}

std::optional<double> Optional(const Members& members, const char* name, double least,
                               double most) {
    return members.Has(name) ? std::optional<double>(members.Number(name, least, most))
                             : std::nullopt;
}

} // namespace

Reply QueueCommand(World& world, const Request& request) {
    const Json::Value body = Body(request);
    const Members members(body, {"id", "command", "tag", "isFile"});
    const std::string id = members.Filled("id");
    Command command;
    command.text = members.Text("command");
    command.isFile = members.OptionalFlag("isFile");
    command.tag = members.Has("tag") ? members.Text("tag") : "";
    CommandText(command); // refuses a tag that cannot be quoted
    command.number = world.payloads.NewNumber();
    if (!members.Has("tag")) {
        command.tag = "t" + std::to_string(command.number);
    }
    world.payloads.Change(id, [&](Payload& payload) {
        payload.commands.Add(
            command, command.tag.size() + command.text.size(),
            [](const Command& old) { return old.state == Command::State::Answered; });
    });
    Json::Value queued(Json::objectValue);
    queued["number"] = Json::UInt64{command.number};
    queued["tag"] = command.tag;
    return JsonReply(queued);
}

Reply PlanShutdown(World& world, const Request& request) {
    const Json::Value body = Body(request);
    const Members members(body, {"id", "inSeconds", "cancel"});
    const std::string id = members.Filled("id");
    std::optional<double> at;
    if (!members.OptionalFlag("cancel")) {
        at = world.clock.Seconds() + members.Number("inSeconds", 0, longestPlanSeconds);
    }
    world.payloads.Change(id, [&](Payload& payload) {
        payload.shutdownAt = at;
        payload.shutdownTold = false;
    });
    return Done();
}

Reply SetSwitch(World& world, const Request& request) {
    const Json::Value body = Body(request);
    const Members members(body, {"id", "name", "on"});
    const std::string id = members.Filled("id");
    const bool on = members.Flag("on");
    const std::string name = members.Has("name") ? members.Filled("name") : "";
    world.payloads.Change(id, [&](Payload& payload) { TurnSwitch(payload, name, on); });
    return Done();
}

Reply ForgetPayload(World& world, const Request& request) {
    const Json::Value body = Body(request);
    const std::string id = Members(body, {"id"}).Text("id");
    if (!world.payloads.Forget(id)) {
        throw NotFound("There is no such payload");
    }
    return Done();
}

Reply OrderVehicle(World& world, const Request& request) {
    const Json::Value body = Body(request);
    const Members members(body, {"latitude", "longitude", "error", "speedMetresPerSecond",
                                 "noiseMetres", "fixIntervalSeconds", "waypoints", "racetrack"});
    VehicleOrder order;
    if (members.Has("waypoints")) {
        order.waypoints = Waypoints(members.Value("waypoints"));
    }
    if (members.Has("racetrack")) {
        order.waypoints = Racetrack(members.Value("racetrack"));
    }
    if (members.Has("latitude") || members.Has("longitude")) {
        order.place = PlaceOf(members);
    }
    if (members.Has("error")) {
        order.error = members.IsNull("error") ? "" : members.Text("error");
    }
    order.speedMetresPerSecond = Optional(members, "speedMetresPerSecond", 0, 1000);
    order.noiseMetres = Optional(members, "noiseMetres", 0, 100000);
    order.fixIntervalSeconds = Optional(members, "fixIntervalSeconds", 0.01, 1e6);
    world.vehicle.Order(order, world.clock.Seconds());
    world.payloads.Wake();
    return JsonReply(VehicleJson(world));
}

Reply SetClock(World& world, const Request& request) {
    const Json::Value body = Body(request);
    const Members members(body, {"speed", "stepSeconds"});
    const auto speed = Optional(members, "speed", 0, greatestClockSpeed);
    const auto step = Optional(members, "stepSeconds", 0, longestPlanSeconds);
    if (speed) {
        world.clock.SetSpeed(*speed);
    }
    if (step) {
        world.clock.Step(*step);
    }
    world.payloads.Wake();
    return JsonReply(ClockJson(world));
}

Reply AddScript(World& world, const Request& request) {
    const Json::Value body = Body(request);
    const Members members(body, {"match", "output"});
    world.scripts.Add({members.Filled("match"), members.Text("output")});
    world.changes.Note();
    return Done();
}

Reply ArmFault(World& world, const Request& request) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    const Json::Value body = Body(request);
    const Members members(body, {"fault", "operation", "count", "probability", "seed"});
    ArmedFault armed;
    armed.fault = members.Filled("fault");
    if (members.Has("operation")) {
        armed.operation = members.Filled("operation");
    }
    if (armed.operation != "all" && !IsOperation(armed.operation)) {
        throw BadRequest("There is no operation '" + armed.operation + "'");
    }
    armed.probability = Optional(members, "probability", 0, 1);
    if (armed.probability && members.Has("count")) {
        throw BadRequest("Members 'count' and 'probability' exclude each other");
    }
    if (!armed.probability) {
        armed.count = members.Has("count") ? members.Count("count", 1, most) : 1;
    }
    const std::uint64_t seed =
        members.Has("seed") ? members.Count("seed", 0, most) : world.settings.seed;
    return JsonReply(FaultJson(world.faults.Arm(armed, seed)));
}

Reply DisarmFaults(World& world, const Request& request) {
    std::optional<std::uint64_t> number;
    if (request.Find("number") != nullptr) {
        number = static_cast<std::uint64_t>(request.Number("number", 1));
    }
    if (!world.faults.Disarm(number)) {
        throw NotFound("There is no armed fault of this number");
    }
    return Done();
}

} // namespace TavoSimulator
} // namespace Brenmoor
