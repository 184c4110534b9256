#pragma once

#include <json/value.h>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {

/// Takes the member when it is a string; any other leaves `field` as it is.
inline void ReadString(const Json::Value& object, const std::string& key, std::string& field) {
    const Json::Value& member = object[key];
    if (member.isString()) {
        field = member.asString();
    }
}

/// Writes the member unless `field` is empty.
inline void WriteString(Json::Value& object, const std::string& key, const std::string& field) {
    if (!field.empty()) {
        object[key] = field;
    }
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
