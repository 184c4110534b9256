#include "HalcyrREST/EncodeURL.h"
#include "HalcyrREST/ReplyJson.h"
#include "registration/StyledText.h"

#include <TavoRemotingLib/HalcyrREST.h>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

using Commands = std::vector<HalcyrREST::RemoteCommand>;

constexpr long defaultTimeoutMs = 3600000;

/// Clears what is asked for and returns the request's further parameters.
std::string ClearAndAsk(Commands* commands, HalcyrREST::GPSInfo* gps,
                        HalcyrREST::ShutdownInfo* shutdown, long maxCommands) {
    std::string parameters = "&format=2";
    if (commands != nullptr) {
        commands->clear();
    } else {
        maxCommands = 0;
    }
    if (gps != nullptr) {
        gps->received = false;
        parameters += "&gps=true";
    }
    if (shutdown != nullptr) {
        shutdown->requested = false;
        parameters += "&shutdown=true";
    }
    // One command is what a poll means that does not say.
    if (maxCommands != 1) {
        parameters += "&maxcommands=" + std::to_string(maxCommands);
    }
    return parameters;
}

/// The poll time in whole seconds, a part of one counting whole, and a minute for the exchange.
/// Divided before anything is added, so that no time is too long for a `long` of 32 bits.
long PollLimitSeconds(long timeoutMs) {
    return timeoutMs / 1000 + (timeoutMs % 1000 > 0 ? 1 : 0) + 60;
}

void ThrowIfError(const Json::Value& reply) {
    const Json::Value& error = reply["error"];
    if (!error.isNull()) {
        throw std::runtime_error("Poll operation returned error from server: " +
                                 (error.isString() ? error.asString() : error.toStyledString()));
    }
}

/// Whether the member is a flag that is set. An object or null is passed over; jsoncpp throws for
/// what it cannot read as a boolean.
bool IsTrue(const Json::Value& member) {
    return !member.isObject() && !member.isNull() && member.asBool();
}

void ReadCommands(const Json::Value& items, StyledText& styled, Commands& commands) {
    for (Json::ArrayIndex i = 0; i < items.size(); ++i) {
        const Json::Value& item = items[i];
        if (!item.isObject()) {
            throw std::runtime_error("Non-object found in command item list at index " +
                                     std::to_string(i) + " in response to Poll");
        }
        commands.emplace_back(styled.Of(item));
    }
}

void ReadReply(const Json::Value& reply, Commands* commands, HalcyrREST::GPSInfo* gps,
               HalcyrREST::ShutdownInfo* shutdown) {
    ThrowIfError(reply);
    if (IsTrue(reply["timeout"])) {
        throw HalcyrREST::ServerTimeoutOnRequest("Server returned timeout on Poll operation");
    }
    StyledText styled;
    if (commands != nullptr && reply["commands"].isArray()) {
        ReadCommands(reply["commands"], styled, *commands);
    }
    if (gps != nullptr && reply["gps"].isObject()) {
        *gps = HalcyrREST::GPSInfo(styled.Of(reply["gps"]));
    }
    if (shutdown != nullptr) {
        shutdown->requested = IsTrue(reply["shutdown"]);
    }
    const bool isAnswered = (commands != nullptr && !commands->empty()) ||
                            (gps != nullptr && gps->received) ||
                            (shutdown != nullptr && shutdown->requested);
    if (!isAnswered) {
        throw std::runtime_error(
            "None of the expected conditions were satisfied in response to Poll");
    }
}

} // namespace

void HalcyrREST::Poll(std::vector<std::string>& ids, std::vector<RemoteCommand>* commands,
                      GPSInfo* gps, ShutdownInfo* shutdown, long timeoutMs, long maxCommands) {
    if ((commands == nullptr || maxCommands <= 0) && gps == nullptr && shutdown == nullptr) {
        throw std::invalid_argument("Poll command will not do anything");
    }
    std::string address = Address("poll");
    for (const std::string& id : ids) {
        AppendEncoded(address += "&id=", id);
    }
    address += ClearAndAsk(commands, gps, shutdown, maxCommands);
    const long waitMs = timeoutMs >= 0 ? timeoutMs : defaultTimeoutMs;
    address += "&timeout=" + std::to_string(waitMs);
    const std::string body = Get(std::move(address), "Poll", PollLimitSeconds(waitMs));
    if (body.empty()) {
        throw EmptyCommandException("The command returned was empty");
    }
    // The line break where the records' messages have ": " is part of the text.
    ReadReply(ReplyToJson(body, "Failed to parse poll result to JSON", "\n"), commands, gps,
              shutdown);
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
