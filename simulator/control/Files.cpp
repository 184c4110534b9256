#include "Files.h"
#include "wire/Json.h"

#include <charconv>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string LastPart(const Request& request) {
    return request.path.substr(request.path.rfind('/') + 1);
}

Reply Bytes(std::string bytes) {
    Reply reply;
    reply.type = "application/octet-stream";
    reply.body = std::move(bytes);
    return reply;
}

/// The item whose number is the last part of the path, among the histories of all payloads.
template <typename Item>
Reply FetchItem(World& world, const Request& request, History<Item> Payload::*history,
                std::string Item::*content, const char* what) {
    const std::string wanted = LastPart(request);
    std::optional<std::string> found;
    world.payloads.Look([&](const PayloadRegistry::Payloads& payloads) {
        for (const auto& entry : payloads) {
            (entry.second.*history).Each([&](const Item& item) {
                if (std::to_string(item.number) == wanted) {
                    found = item.*content;
                }
                return !found;
            });
        }
    });
    if (!found) {
        throw NotFound(std::string("No such ") + what + " is kept");
    }
    return Bytes(*std::move(found));
}

} // namespace

Reply FetchFile(World& world, const Request& request) {
    Reply reply = Bytes("");
    reply.filePath = world.files.Find(LastPart(request)).string();
    if (reply.filePath.empty() ||
        LastPart(request).size() + sizeof "/sim/v1/files" != request.path.size()) {
        throw NotFound("No such file is kept");
    }
    return reply;
}

Reply FetchPacket(World& world, const Request& request) {
    return FetchItem(world, request, &Payload::packets, &Packet::bytes, "packet");
}

Reply FetchAnswer(World& world, const Request& request) {
    return FetchItem(world, request, &Payload::answers, &Answer::text, "answer");
}

Reply ShowRegistration(World& world, const Request& request) {
    const std::string& id = request.Given("id");
    std::optional<Json::Value> found;
    world.payloads.Look([&](const PayloadRegistry::Payloads& payloads) {
        const auto payload = payloads.find(id);
        if (payload != payloads.end()) {
            found = payload->second.registration;
        }
    });
    if (!found) {
        throw NotFound("This payload is not registered");
    }
    return JsonReply(*found);
}

} // namespace TavoSimulator
} // namespace Brenmoor
