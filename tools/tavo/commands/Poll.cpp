#include "commands/Commands.h"
#include "commands/Position.h"
#include "core/Failure.h"
#include "core/Session.h"
#include "core/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>

namespace Brenmoor {
namespace Tavo {

namespace {

using TavoRemotingLib::HalcyrREST;

struct PollOptions {
    bool commands = false;
    bool position = false;
    bool shutdown = false;
    long most = 10;
    std::string wait = "60";
};

struct Reply {
    std::vector<HalcyrREST::RemoteCommand> commands;
    HalcyrREST::GPSInfo position;
    HalcyrREST::ShutdownInfo shutdown;
};

/// Seconds with up to three places, as milliseconds. libcurl takes no more than the most.
long Milliseconds(const std::string& seconds) {
    constexpr long mostSeconds = 2147421;
    const std::size_t point = std::min(seconds.find('.'), seconds.size());
    const std::string whole = "0" + seconds.substr(0, point);
    std::string places = seconds.substr(std::min(point + 1, seconds.size()));
    const bool isNumber = seconds.size() > (point < seconds.size() ? 1 : 0) &&
                          (whole + places).find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber || whole.size() > 8 || places.size() > 3 || std::stol(whole) > mostSeconds) {
        throw UsageError("--wait needs seconds, with up to three places and below " +
                         std::to_string(mostSeconds + 1) + ", not '" + seconds + "'");
    }
    places.resize(3, '0');
    return std::stol(whole) * 1000 + std::stol(places);
}

std::string Number(double value) {
    std::array<char, 512> text{};
    char* const end = text.data() + text.size();
    return {text.data(), std::to_chars(text.data(), end, value, std::chars_format::fixed).ptr};
}

Json::Value ReplyJson(const Reply& reply, bool isTimeout) {
    Json::Value value;
    value["commands"] = Json::arrayValue;
    for (const HalcyrREST::RemoteCommand& command : reply.commands) {
        Json::Value item;
        item["id"] = command.id;
        item["tag"] = command.tag;
        item["command"] = command.command;
        item["isFile"] = command.isFile;
        value["commands"].append(item);
    }
    value["position"] = JsonOf(reply.position);
    value["shutdown"] = reply.shutdown.requested;
    value["timeout"] = isTimeout;
    return value;
}

std::string TextOf(const Reply& reply, const Style& style) {
    std::string text;
    for (const HalcyrREST::RemoteCommand& command : reply.commands) {
        text += style.Bold(command.isFile ? "file" : "command") +
                Escaped(" for " + command.id + ", tag '" + command.tag + "': " + command.command) +
                "\n";
    }
    const HalcyrREST::GPSInfo& position = reply.position;
    if (position.received && position.hasError) {
        text += style.Red("no position") + Escaped(": " + position.errorText) + "\n";
    } else if (position.received) {
        text += style.Bold("position") + " " + Number(position.latitude) + " " +
                Number(position.longitude) + ", fixed at " + Number(position.timeFix) + "\n";
    }
    if (reply.shutdown.requested) {
        text += style.Bold("shutdown") + " is requested\n";
    }
    return text;
}

void Poll(Session& session, const PollOptions& options) {
    const bool all = !options.commands && !options.position && !options.shutdown;
    if (options.most < 1) {
        throw UsageError("--most needs a number above 0");
    }
    const long waitMs = Milliseconds(options.wait);
    std::vector<std::string> ids = session.Ids();
    auto& client = session.Client();
    Reply reply;
    try {
        session.Transfer([&] {
            client.Poll(ids, all || options.commands ? &reply.commands : nullptr,
                        all || options.position ? &reply.position : nullptr,
                        all || options.shutdown ? &reply.shutdown : nullptr, waitMs, options.most);
        });
    } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
        session.output.Result("", ReplyJson(reply, true));
        throw;
    } catch (const std::exception&) {
        // The server will not send again the commands before a malformed one.
        if (!reply.commands.empty()) {
            session.output.Result(TextOf(reply, session.output.Colours()), ReplyJson(reply, false));
        }
        throw;
    }
    session.output.Result(TextOf(reply, session.output.Colours()), ReplyJson(reply, false));
}

} // namespace

Command PollCommand() {
    const auto options = std::make_shared<PollOptions>();
    Command command;
    command.name = "poll";
    command.summary = "ask once for commands, position and shutdown";
    command.details = {
        "The server answers as soon as it has something of what is asked for, and it has a "
        "position "
        "at nearly any time: to wait for a command, ask for commands only. When nothing happens in "
        "the time given, the exit code is 4.",
        "Each command must be answered under its tag with 'tavo respond'."};
    command.options = {
        {"--commands", "", "ask for commands", &options->commands},
        {"--position", "", "ask for the position", &options->position},
        {"--shutdown", "", "ask whether to shut down; without any of the three, for all",
         &options->shutdown},
        {"--most", "N", "the most commands to be sent (default: 10)", &options->most},
        {"--wait", "SECONDS", "how long the server may wait for something (default: 60)",
         &options->wait},
    };
    command.examples = {
        {"All that there is for payload P1", "tavo poll --id P1"},
        {"Wait up to ten minutes for a command to one of two payloads",
         "tavo poll --commands --wait 600 --id P1 --id P2"},
        {"The vehicle's latitude, for a script",
         "tavo poll --position --json | jq .position.latitude"},
    };
    command.run = [options](Session& session) {
        Poll(session, *options);
    };
    return command;
}

} // namespace Tavo
} // namespace Brenmoor
