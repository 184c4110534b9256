#include "State.h"
#include "EscapedText.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

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

/// An array of what `toJson` makes of every element.
template <typename Elements, typename Function>
JsonArray Array(const Elements& elements, const Function& toJson) {
    JsonArray array;
    for (const auto& element : elements) {
        array.add(toJson(element));
    }
    return array;
}

JsonObject CommandJson(const Command& command) {
    JsonObject json = NewObject();
    json.set("tag", JsonText(command.tag));
    json.set("command", JsonText(command.text));
    json.set("isFile", command.isFile);
    json.set("state", Name(command.state));
    return json;
}

JsonObject AnswerJson(const Answer& answer) {
    JsonObject json = NewObject();
    json.set("tag", JsonText(answer.tag));
    json.set("text", JsonText(answer.text));
    json.set("complete", answer.complete);
    json.set("succeeded", answer.succeeded);
    return json;
}

JsonObject PacketJson(const std::string& packet) {
    JsonObject json = NewObject();
    json.set("size", packet.size());
    json.set("hex", Hexadecimal(packet));
    return json;
}

JsonObject FileJson(const KeptFile& file) {
    JsonObject json = NewObject();
    json.set("operation", file.operation);
    json.set("name", file.name);
    json.set("remote", JsonText(file.remote));
    json.set("fileName", JsonText(file.fileName));
    json.set("size", file.size);
    return json;
}

Poco::Dynamic::Var ShutdownJson(const Payload& payload, double now) {
    if (!payload.shutdownAt) {
        return {};
    }
    JsonObject json = NewObject();
    json.set("pending", *payload.shutdownAt <= now);
    json.set("told", payload.shutdownTold);
    json.set("inSeconds", *payload.shutdownAt - now);
    return json;
}

Poco::Dynamic::Var RegistrationJson(const Payload& payload) {
    return payload.registration ? Poco::Dynamic::Var(*ParseMembers(*payload.registration, "It"))
                                : Poco::Dynamic::Var();
}

JsonObject PayloadJson(const std::string& id, const Payload& payload, double now) {
    JsonObject switches = NewObject();
    for (const auto& [name, on] : payload.switches) {
        switches.set(JsonText(name), on);
    }
    JsonObject json = NewObject();
    json.set("id", JsonText(id));
    json.set("hostId", JsonText(payload.hostId));
    json.set("registration", RegistrationJson(payload));
    json.set("registrationComplete", payload.registrationComplete);
    json.set("off", payload.off);
    json.set("mainSwitch",
             payload.mainSwitch ? Poco::Dynamic::Var(*payload.mainSwitch) : Poco::Dynamic::Var());
    json.set("switches", switches);
    json.set("shutdown", ShutdownJson(payload, now));
    json.set("commands", Array(payload.commands, CommandJson));
    json.set("answers", Array(payload.answers, AnswerJson));
    json.set("scripts", Array(payload.scripts, JsonText));
    json.set("packets", Array(payload.packets, PacketJson));
    json.set("files", Array(payload.files, FileJson));
    return json;
}

JsonObject EntryJson(const JournalEntry& entry) {
    JsonObject json = NewObject();
    json.set("number", entry.number);
    json.set("time", entry.time);
    json.set("peer", entry.peer);
    json.set("method", JsonText(entry.method));
    json.set("target", JsonText(entry.target));
    json.set("status", entry.status);
    json.set("reason", entry.reason);
    json.set("requestBytes", entry.requestBytes);
    json.set("replyBytes", entry.replyBytes);
    json.set("seconds", entry.seconds);
    return json;
}

} // namespace

JsonObject StateJson(const World& world) {
    const double now = world.clock.Seconds();
    JsonObject state = NewObject();
    state.set("vehicle", PositionJson(world, world.vehicle.FixAt(now)));
    state.set("heldPolls", world.payloads.HeldPolls());
    JsonArray payloads;
    for (const auto& [id, payload] : world.payloads.Snapshot()) {
        payloads.add(PayloadJson(id, payload, now));
    }
    state.set("payloads", payloads);
    return state;
}

JsonObject JournalJson(const World& world) {
    JsonObject journal = NewObject();
    journal.set("exchanges", Array(world.journal.Entries(), EntryJson));
    return journal;
}

} // namespace TavoSimulator
} // namespace Brenmoor
