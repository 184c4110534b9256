#include "Uploads.h"
#include "wire/EscapedText.h"
#include "wire/Form.h"
#include "wire/Json.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string Optional(const Request& request, const std::string& name) {
    const std::string* const value = request.Find(name);
    return value == nullptr ? "" : *value;
}

Reply KeepFile(World& world, const Request& request, const std::string& remote) {
    const std::string& id = request.Filled("id");
    KeptFile file;
    file.operation = request.Filled("op");
    file.remote = remote;
    FileStore::Upload upload(world.files);
    file.fileName = ReadForm(request, upload.Stream(), world.settings.mostUploadBytes);
    file.name = upload.Keep(remote.empty() ? BaseName(file.fileName) : remote, file.size);
    file.sha256 = Sha256(world.files.Find(file.name).string());
    const std::size_t size = file.remote.size() + file.fileName.size();
    world.payloads.Change(id, [&](Payload& payload) { payload.files.Add(file, size); });
    return Ok();
}

std::string PacketBytes(const Request& request) {
    const std::string text = ReadTextForm(request);
    const char flag[] = "the packet is not escaped as the client does it";
    try {
        std::string bytes = Unescape(text);
        if (Escape(bytes) != text) {
            request.flag(flag);
        }
        return bytes;
    } catch (const Refusal&) {
        request.flag(flag);
        throw;
    }
}

/// Finds the command that an answer is for, and marks it as answered if that is the last one.
void Settle(Payload& payload, Answer& answer, double now) {
    payload.commands.Each([&](Command& command) {
        if (command.tag != answer.tag || command.state != Command::State::Delivered) {
            return true;
        }
        answer.command = command.number;
        command.deliveredAt = now;
        if (answer.complete) {
            command.state = Command::State::Answered;
            command.succeeded = answer.succeeded;
        }
        return false;
    });
}

} // namespace

Reply AnswerJar(World& world, const Request& request) {
    return KeepFile(world, request, "");
}

Reply AnswerUpload(World& world, const Request& request) {
    return KeepFile(world, request, Optional(request, "remote"));
}

Reply AnswerReply(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    Answer answer;
    answer.tag = request.Given("tag");
    answer.complete = request.Flag("complete", true);
    answer.succeeded = request.Flag("succeeded", true);
    answer.text = ReadTextForm(request);
    answer.number = world.payloads.NewNumber();
    const double now = world.clock.Seconds();
    world.payloads.Change(id, [&](Payload& payload) {
        Settle(payload, answer, now);
        payload.answers.Add(answer, answer.tag.size() + answer.text.size());
    });
    return Ok();
}

Reply AnswerRawPacket(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    Packet packet;
    packet.bytes = PacketBytes(request);
    packet.number = world.payloads.NewNumber();
    const std::size_t size = packet.bytes.size();
    world.payloads.Change(id, [&](Payload& payload) { payload.packets.Add(packet, size); });
    return Ok();
}

Reply AnswerMeta(World& world, const Request& request) {
    // Parsed, a document takes up to a hundred times its size, and everyone who looks is sent it.
    constexpr std::uintmax_t largest = std::uintmax_t{256} * 1024;
    const std::string text = ReadTextForm(request, largest);
    if (HasBraces(text)) {
        request.flag("the registration document has its outer braces");
    }
    const Json::Value document = ParseMembers(text, "The registration document");
    world.payloads.Change(Optional(request, "id"), [&](Payload& payload) {
        payload.registration = document;
        payload.registrationComplete = false;
        payload.hostId = Optional(request, "hostid");
    });
    return Ok();
}

} // namespace TavoSimulator
} // namespace Brenmoor
