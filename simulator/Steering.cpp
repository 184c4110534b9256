#include "Steering.h"
#include "Json.h"
#include "Poll.h"
#include "State.h"

#include <iterator>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr char filesPath[] = "/sim/files/";
constexpr std::size_t largestBody = std::size_t{1024} * 1024;
constexpr double longestPlanSeconds = 1e9;

JsonObject::Ptr Body(const Request& request) {
    std::string text(largestBody + 1, '\0');
    request.body.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(request.body.gcount()));
    if (text.size() > largestBody) {
        throw Refusal(413, "Request Entity Too Large", "The body is too large");
    }
    return ParseObject(text, "The body");
}

std::string Text(const JsonObject& body, const std::string& name) {
    const Poco::Dynamic::Var value = body.get(name);
    if (!value.isString()) {
        throw BadRequest("Member '" + name + "' must be a string");
    }
    return value.extract<std::string>();
}

std::string Id(const JsonObject& body) {
    std::string id = Text(body, "id");
    if (id.empty()) {
        throw BadRequest("Member 'id' is empty");
    }
    return id;
}

bool Flag(const JsonObject& body, const std::string& name) {
    const Poco::Dynamic::Var value = body.get(name);
    if (!value.isEmpty() && !value.isBoolean()) {
        throw BadRequest("Member '" + name + "' must be true or false");
    }
    return !value.isEmpty() && value.extract<bool>();
}

double Seconds(const JsonObject& body, const std::string& name) {
    const Poco::Dynamic::Var value = body.get(name);
    const bool isNumber = value.isNumeric() && !value.isBoolean() && !value.isString();
    const double seconds = isNumber ? value.convert<double>() : -1;
    if (seconds < 0 || seconds > longestPlanSeconds) {
        throw BadRequest("Member '" + name + "' must be a number of seconds from 0 on");
    }
    return seconds;
}

Reply Done() {
    JsonObject done = NewObject();
    done.set("ok", true);
    return JsonReply(done);
}

Reply QueueCommand(World& world, const Request& request) {
    const JsonObject::Ptr body = Body(request);
    const std::string id = Id(*body);
    Command command;
    command.tag = Text(*body, "tag");
    command.text = Text(*body, "command");
    command.isFile = Flag(*body, "isFile");
    CommandText(command); // refuses a tag that cannot be quoted
    world.payloads.Change(id, [&](Payload& payload) { payload.commands.push_back(command); });
    return Done();
}

Reply PlanShutdown(World& world, const Request& request) {
    const JsonObject::Ptr body = Body(request);
    const std::string id = Id(*body);
    const double at = world.clock.Seconds() + Seconds(*body, "inSeconds");
    world.payloads.Change(id, [at](Payload& payload) {
        payload.shutdownAt = at;
        payload.shutdownTold = false;
    });
    return Done();
}

Reply ShowState(World& world, const Request&) {
    return JsonReply(StateJson(world));
}

Reply ShowJournal(World& world, const Request&) {
    return JsonReply(JournalJson(world));
}

Reply FetchFile(World& world, const Request& request) {
    RequireMethod(request, "GET");
    Reply reply;
    reply.type = "application/octet-stream";
    reply.filePath = world.files.Find(request.path.substr(sizeof filesPath - 1)).string();
    if (reply.filePath.empty()) {
        throw Refusal(404, "Not Found", "No such file is kept");
    }
    return reply;
}

struct Target {
    const char* path;
    const char* method;
    Reply (*handler)(World& world, const Request& request);
};

constexpr Target targets[] = {
    {"/sim/command", "POST", QueueCommand},
    {"/sim/shutdown", "POST", PlanShutdown},
    {"/sim/state", "GET", ShowState},
    {"/sim/journal", "GET", ShowJournal},
};

} // namespace

bool IsSteering(const Request& request) {
    return request.path.rfind("/sim/", 0) == 0;
}

Reply AnswerSteering(World& world, const Request& request) {
    if (request.path.rfind(filesPath, 0) == 0) {
        return FetchFile(world, request);
    }
    for (const Target& target : targets) {
        if (request.path == target.path) {
            RequireMethod(request, target.method);
            return target.handler(world, request);
        }
    }
    throw Refusal(404, "Not Found", "Nothing is steered here");
}

} // namespace TavoSimulator
} // namespace Brenmoor
