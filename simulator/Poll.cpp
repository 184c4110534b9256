#include "Poll.h"
#include "EscapedText.h"
#include "Json.h"

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

JsonArray Commands(const std::vector<PollResult::Item>& items) {
    JsonArray commands;
    for (const PollResult::Item& item : items) {
        JsonObject command = NewObject();
        command.set("id", JsonText(item.id));
        command.set("command", JsonText(CommandText(item.command)));
        commands.add(command);
    }
    return commands;
}

JsonObject News(const World& world, const PollResult& result) {
    JsonObject news = NewObject();
    if (!result.commands.empty()) {
        news.set("commands", Commands(result.commands));
    }
    if (result.fix) {
        news.set("gps", PositionJson(world, *result.fix));
    }
    if (result.shutdown) {
        news.set("shutdown", true);
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
    JsonObject timeout = NewObject();
    timeout.set("timeout", true);
    return JsonReply(timeout);
}

} // namespace TavoSimulator
} // namespace Brenmoor
