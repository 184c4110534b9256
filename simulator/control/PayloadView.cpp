#include "PayloadView.h"
#include "wire/EscapedText.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr std::size_t longestText = 4000;

const char* Name(Command::State state) {
    switch (state) {
    case Command::State::Queued:
        return "queued";
    case Command::State::Delivered:
        return "delivered";
    case Command::State::Answered:
        break;
    }
    return "answered";
}

std::string Cut(const std::string& text) {
    return text.substr(0, longestText);
}

Json::Value Optional(const std::optional<bool>& value) {
    return value ? Json::Value(*value) : Json::Value();
}

/// An array of what `toJson` makes of every item.
template <typename Item>
Json::Value Array(const History<Item>& items, Json::Value (*toJson)(const Item&)) {
    Json::Value array(Json::arrayValue);
    items.Each([&](const Item& item) {
        array.append(toJson(item));
        return true;
    });
    return array;
}

Json::Value CommandJson(const Command& command) {
    Json::Value json(Json::objectValue);
    json["number"] = Json::UInt64{command.number};
    json["tag"] = command.tag;
    json["command"] = Cut(command.text);
    json["isFile"] = command.isFile;
    json["state"] = Name(command.state);
    json["succeeded"] = Optional(command.succeeded);
    return json;
}

Json::Value AnswerJson(const Answer& answer) {
    Json::Value json(Json::objectValue);
    json["number"] = Json::UInt64{answer.number};
    json["command"] = Json::UInt64{answer.command};
    json["tag"] = answer.tag;
    json["text"] = Cut(answer.text);
    json["size"] = Json::UInt64{answer.text.size()};
    json["complete"] = answer.complete;
    json["succeeded"] = answer.succeeded;
    return json;
}

Json::Value ScriptJson(const RunScript& script) {
    Json::Value json(Json::objectValue);
    json["command"] = Cut(script.command);
    json["output"] = Cut(script.output);
    json["exitStatus"] = script.exitStatus ? Json::Value(*script.exitStatus) : Json::Value();
    json["killed"] = script.killed.empty() ? Json::Value() : Json::Value(script.killed);
    return json;
}

Json::Value PacketJson(const Packet& packet) {
    Json::Value json(Json::objectValue);
    json["number"] = Json::UInt64{packet.number};
    json["size"] = Json::UInt64{packet.bytes.size()};
    json["text"] = Escape(Cut(packet.bytes));
    return json;
}

Json::Value FileJson(const KeptFile& file) {
    Json::Value json(Json::objectValue);
    json["operation"] = file.operation;
    json["name"] = file.name;
    json["remote"] = file.remote;
    json["fileName"] = file.fileName;
    json["size"] = Json::UInt64{file.size};
    json["sha256"] = file.sha256;
    return json;
}

Json::Value ShutdownJson(const Payload& payload, double now) {
    if (!payload.shutdownAt) {
        return Json::Value();
    }
    Json::Value json(Json::objectValue);
    json["pending"] = *payload.shutdownAt <= now;
    json["told"] = payload.shutdownTold;
    json["inSeconds"] = *payload.shutdownAt - now;
    return json;
}

Json::Value PayloadJson(const std::string& id, const Payload& payload, const Clock& clock,
                        double now) {
    Json::Value json(Json::objectValue);
    json["id"] = id;
    json["hostId"] = payload.hostId;
    json["registration"] = payload.registration.value_or(Json::Value());
    json["registrationComplete"] = payload.registrationComplete;
    json["off"] = payload.off;
    json["mainSwitch"] = Optional(payload.mainSwitch);
    json["switches"] = Json::objectValue;
    for (const auto& [name, on] : payload.switches) {
        json["switches"][name] = on;
    }
    json["shutdown"] = ShutdownJson(payload, now);
    json["lastSeenUnixSeconds"] = clock.UnixSeconds(payload.lastSeen);
    json["heldPolls"] = Json::UInt64{payload.heldPolls};
    json["commands"] = Array(payload.commands, CommandJson);
    json["answers"] = Array(payload.answers, AnswerJson);
    json["scripts"] = Array(payload.scripts, ScriptJson);
    json["packets"] = Array(payload.packets, PacketJson);
    json["files"] = Array(payload.files, FileJson);
    return json;
}

} // namespace

Json::Value PayloadsJson(const World& world) {
    const double now = world.clock.Seconds();
    Json::Value list(Json::arrayValue);
    world.payloads.Look([&](const PayloadRegistry::Payloads& payloads) {
        for (const auto& [id, payload] : payloads) {
            list.append(PayloadJson(id, payload, world.clock, now));
        }
    });
    return list;
}

} // namespace TavoSimulator
} // namespace Brenmoor
