#include "Poll.h"
#include "wire/EscapedText.h"
#include "wire/Json.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::size_t MaxCommands(const Request& request) {
    if (request.Find("maxcommands") == nullptr) {
        return 1;
    }
    // A client that wants no commands may say so by a negative number, too.
    const std::int64_t number =
        request.Number("maxcommands", std::numeric_limits<std::int64_t>::min());
    return static_cast<std::size_t>(std::max<std::int64_t>(number, 0));
}

PollRequest Parse(const Request& request) {
    if (request.Given("format") != "2") {
        throw BadRequest("Format '" + Escape(request.Given("format")) + "' is not known, only 2");
    }
    PollRequest poll;
    for (const auto& parameter : request.parameters) {
        if (parameter.first == "id") {
            poll.ids.push_back(parameter.second);
        }
    }
    poll.gps = request.Flag("gps", false);
    poll.shutdown = request.Flag("shutdown", false);
    poll.maxCommands = MaxCommands(request);
    poll.timeoutSeconds = static_cast<double>(request.Number("timeout", 0)) / 1000;
    poll.peerPresent = request.peerPresent;
    return poll;
}

Json::Value News(const World& world, const PollResult& result) {
    Json::Value news(Json::objectValue);
    for (const PollResult::Item& item : result.commands) {
        Json::Value command(Json::objectValue);
        command["id"] = item.id;
        command["command"] = CommandText(item.command);
        news["commands"].append(command);
    }
    if (result.fix) {
        news["gps"] = PositionJson(world.clock, *result.fix);
    }
    if (result.shutdown) {
        news["shutdown"] = true;
    }
    return news;
}

} // namespace

std::string CommandText(const Command& command) {
    const bool hasApostrophe = command.tag.find('\'') != std::string::npos;
    if (hasApostrophe && command.tag.find('"') != std::string::npos) {
        throw BadRequest("The tag contains both kinds of quotes");
    }
    const char quote = hasApostrophe ? '"' : '\'';
    return (command.isFile ? "file:" : "") + (quote + command.tag) + quote + command.text;
}

Json::Value PositionJson(const Clock& clock, const Fix& fix) {
    Json::Value position(Json::objectValue);
    position["latitude"] = fix.place.latitudeDegrees;
    position["longitude"] = fix.place.longitudeDegrees;
    position["timeFix"] = clock.UnixSeconds(fix.seconds);
    if (!fix.error.empty()) {
        position["error"] = fix.error;
    }
    return position;
}

Reply AnswerPoll(World& world, const Request& request) {
    const PollResult result = world.payloads.Poll(Parse(request));
    switch (result.end) {
    case PollResult::End::News:
        return JsonReply(News(world, result));
    case PollResult::End::PeerGone:
        throw Refusal(499, "Client Closed Request", "The one who polled has hung up");
    case PollResult::End::Closed:
        throw Refusal(503, "Service Unavailable", "The server is going down");
    case PollResult::End::TimedOut:
        break;
    }
    Json::Value timeout(Json::objectValue);
    timeout["timeout"] = true;
    return JsonReply(timeout);
}

} // namespace TavoSimulator
} // namespace Brenmoor
