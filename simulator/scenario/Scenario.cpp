#include "Scenario.h"
#include "control/Control.h"
#include "wire/Json.h"

#include <algorithm>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr double longestSeconds = 1e9;

/// Lets `read` read what stands at this place of the file.
template <typename Function>
auto At(const std::string& place, const Function& read) {
    try {
        return read();
    } catch (const Refusal& refusal) {
        throw FileMistake((place.empty() ? "" : place + ": ") + refusal.what());
    }
}

const Json::Value& RequireObject(const Json::Value& value, const std::string& place) {
    if (!value.isObject()) {
        throw FileMistake(place + ": must be an object");
    }
    return value;
}

/// The one member besides those that are known.
std::string OtherMember(const Json::Value& object, const std::string& place, const char* known,
                        const char* what) {
    std::string other;
    for (const std::string& name : object.getMemberNames()) {
        if (name == known) {
            continue;
        }
        if (!other.empty()) {
            throw FileMistake(place + ": '" + other + "' and '" + name + "' exclude each other");
        }
        other = name;
    }
    if (other.empty()) {
        throw FileMistake(place + ": " + what + " is missing");
    }
    return other;
}

Step Disarming(const Json::Value& body) {
    constexpr std::uint64_t most = 1000000;
    const Members members(body, {"number"});
    Step step;
    step.method = "DELETE";
    step.target = "/sim/v1/faults";
    if (members.Has("number")) {
        step.target += "?number=" + std::to_string(members.Count("number", 1, most));
    }
    return step;
}

Step ParseStep(const Json::Value& value, const std::string& place) {
    RequireObject(value, place);
    const std::string order = OtherMember(value, place, "at", "what to do");
    const std::string orderPlace = place + "." + order;
    Step step;
    if (order == "disarm") {
        RequireObject(value[order], orderPlace);
        step = At(orderPlace, [&] { return Disarming(value[order]); });
    } else if (TakesOrders(order)) {
        step.method = "POST";
        step.target = "/sim/v1/" + order;
        step.body = JsonLine(RequireObject(value[order], orderPlace));
    } else {
        throw FileMistake(orderPlace + ": there is no such order");
    }
    step.place = orderPlace;
    step.at = At(place, [&] {
        return Members(value, {"at", order.c_str()}).Number("at", 0, longestSeconds);
    });
    return step;
}

NamedExpectation ParseExpectation(const Json::Value& value, const std::string& place) {
    RequireObject(value, place);
    const std::string kind = OtherMember(value, place, "name", "what to expect");
    const std::string kindPlace = place + "." + kind;
    const ExpectationMaker maker = FindExpectationMaker(kind);
    if (maker == nullptr) {
        throw FileMistake(kindPlace + ": there is no such expectation");
    }
    RequireObject(value[kind], kindPlace);
    NamedExpectation named;
    named.name = place + ": " + JsonLine(value);
    if (value.isMember("name")) {
        named.name = At(place, [&] {
            return Members(value, {"name", kind.c_str()}).Filled("name");
        });
    }
    named.expectation = At(kindPlace, [&] { return maker(value[kind]); });
    return named;
}

/// What `parse` makes of each item of an array that may be absent.
template <typename Item>
std::vector<Item> ParseArray(const Json::Value& document, const std::string& name,
                             Item (*parse)(const Json::Value&, const std::string&)) {
    std::vector<Item> items;
    if (!document.isMember(name)) {
        return items;
    }
    if (!document[name].isArray()) {
        throw FileMistake(name + ": must be an array");
    }
    for (const Json::Value& value : document[name]) {
        items.push_back(parse(value, name + "[" + std::to_string(items.size()) + "]"));
    }
    return items;
}

void ParseEnd(const Json::Value& document, Scenario& scenario) {
    if (!document.isMember("end")) {
        throw FileMistake("end: is missing");
    }
    const Json::Value& end = RequireObject(document["end"], "end");
    At("end", [&] {
        const Members members(end, {"at", "whenMet"});
        scenario.endWhenMet = members.OptionalFlag("whenMet");
        if (members.Has("at")) {
            scenario.endAt = members.Number("at", 0, longestSeconds);
        }
    });
    if (!scenario.endAt && !scenario.endWhenMet) {
        throw FileMistake("end: member 'at' or a true 'whenMet' is missing");
    }
    if (scenario.endAt && !scenario.steps.empty() && *scenario.endAt < scenario.steps.back().at) {
        throw FileMistake("end.at: is before " + scenario.steps.back().place);
    }
}

void ParseSettings(const Members& members, Scenario& scenario) {
    constexpr std::uint64_t greatestSeed = std::numeric_limits<std::uint32_t>::max();
    if (members.Has("speed")) {
        scenario.speed = members.Number("speed", 0, 1e5);
    }
    if (members.Has("start")) {
        scenario.startUnixSeconds = members.Number("start", 0, 1e11);
    }
    if (members.Has("seed")) {
        scenario.seed = members.Count("seed", 0, greatestSeed);
    }
}

/// Plays the steps in a world that nobody sees, where their mistakes come to light. What depends on
/// what payloads do, such as whether there is one to forget, is left to the play.
void Rehearse(const std::vector<Step>& steps) {
    Settings settings;
    settings.dataFolder = "/";
    settings.clockSpeed = 0;
    settings.startUnixSeconds = 0;
    World world(settings);
    for (const Step& step : steps) {
        try {
            PlayStep(world, step);
        } catch (const Refusal& refusal) {
            if (refusal.status != 404) {
                throw FileMistake(step.place + ": " + refusal.what());
            }
        }
    }
}

} // namespace

void PlayStep(World& world, const Step& step) {
    std::istringstream body(step.body);
    Request request(step.method, step.target, body);
    request.headers = {{"Host", "localhost"}, {"Content-Type", "application/json"}};
    AnswerControl(world, request);
}

Scenario ParseScenario(const std::string& text) {
    const Json::Value document = ParseFileObject(text);
    Scenario scenario;
    At("", [&] {
        ParseSettings(Members(document, {"speed", "start", "seed", "steps", "end", "expect"}),
                      scenario);
    });
    scenario.steps = ParseArray(document, "steps", ParseStep);
    std::stable_sort(scenario.steps.begin(), scenario.steps.end(),
                     [](const Step& one, const Step& other) { return one.at < other.at; });
    Rehearse(scenario.steps);
    ParseEnd(document, scenario);
    scenario.expectations = ParseArray(document, "expect", ParseExpectation);
    if (scenario.expectations.empty()) {
        throw FileMistake("expect: is missing or empty");
    }
    return scenario;
}

} // namespace TavoSimulator
} // namespace Brenmoor
