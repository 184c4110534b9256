#include "Uploads.h"
#include "EscapedText.h"
#include "Form.h"
#include "Json.h"

#include <limits>

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
    file.fileName = ReadForm(request, upload.Stream(), std::numeric_limits<std::size_t>::max());
    file.name = upload.Keep(remote.empty() ? BaseName(file.fileName) : remote, file.size);
    world.payloads.Change(id, [&](Payload& payload) { payload.files.push_back(file); });
    return Ok();
}

void Settle(Payload& payload, const std::string& tag) {
    for (Command& command : payload.commands) {
        if (command.tag == tag && command.state == Command::State::Delivered) {
            command.state = Command::State::Answered;
            return;
        }
    }
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
    world.payloads.Change(id, [&](Payload& payload) {
        payload.answers.push_back(answer);
        if (answer.complete) {
            Settle(payload, answer.tag);
        }
    });
    return Ok();
}

Reply AnswerRawPacket(World& world, const Request& request) {
    const std::string& id = request.Filled("id");
    const std::string packet = Unescape(ReadTextForm(request));
    world.payloads.Change(id, [&](Payload& payload) { payload.packets.push_back(packet); });
    return Ok();
}

Reply AnswerMeta(World& world, const Request& request) {
    const std::string document = ReadTextForm(request);
    ParseMembers(document, "The registration document");
    world.payloads.Change(Optional(request, "id"), [&](Payload& payload) {
        payload.registration = document;
        payload.registrationComplete = false;
        payload.hostId = Optional(request, "hostid");
    });
    return Ok();
}

} // namespace TavoSimulator
} // namespace Brenmoor
