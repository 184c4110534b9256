#include "HalcyrREST/ReplyJson.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <boost/algorithm/string/predicate.hpp>
#include <cmath>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

const char filePrefix[] = "file:";
constexpr std::size_t filePrefixLength = sizeof filePrefix - 1;

std::string StringMember(const Json::Value& object, const char* key, const char* failure) {
    const Json::Value& member = object[key];
    if (!member.isString()) {
        throw HalcyrREST::RemoteCommandFormatError(failure);
    }
    return member.asString();
}

double NumberOrNaN(const Json::Value& member) {
    return member.isNumeric() ? member.asDouble() : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

HalcyrREST::RemoteCommand::RemoteCommand(const std::string& json) {
    const Json::Value object = ReplyToJson(json, "Failed to parse command to JSON", ": ");
    const std::string idText = StringMember(object, "id", "Missing string element 'id'");
    // The message deliberately says 'cmd', as it always has.
    std::string text = StringMember(object, "command", "Missing string element 'cmd'");
    id = idText;
    isFile = boost::algorithm::istarts_with(text, filePrefix);
    if (isFile) {
        text.erase(0, filePrefixLength);
    }
    const bool isQuoted = text.size() > 1 && (text[0] == '\'' || text[0] == '"');
    const std::size_t end = isQuoted ? text.find(text[0], 1) : std::string::npos;
    if (end == std::string::npos) {
        throw RemoteCommandFormatError("Response tag not found at start of message");
    }
    tag = text.substr(1, end - 1);
    command = text.substr(end + 1);
}

HalcyrREST::GPSInfo::GPSInfo(const std::string& json) : received(true) {
    const Json::Value object = ReplyToJson(json, "Failed to parse gps info to JSON", ": ");
    const Json::Value& error = object["error"];
    hasError = error.isString();
    if (hasError) {
        errorText = error.asString();
    }
    latitude = NumberOrNaN(object["latitude"]);
    longitude = NumberOrNaN(object["longitude"]);
    timeFix = NumberOrNaN(object["timeFix"]);
    if (!hasError && (std::isnan(latitude) || std::isnan(longitude) || std::isnan(timeFix))) {
        hasError = true;
        errorText = "One or more fields are not valid";
    }
}

// Deliberately ignores the text: only a poll's reply says whether a shutdown is requested.
HalcyrREST::ShutdownInfo::ShutdownInfo(const std::string&) {}

} // namespace TavoRemotingLib
} // namespace Brenmoor
