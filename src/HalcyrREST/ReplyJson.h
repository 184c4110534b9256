#pragma once

#include <json/value.h>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {

/// Parses a part of a reply. A HalcyrREST::JSONParsingError raised by that is thrown anew as
/// `failure`, " (", its type's name, `separator`, its message, ")" and a line feed. Deliberately
/// nothing else is caught: a text that is not JSON keeps the JSON library's own words.
Json::Value ReplyToJson(const std::string& text, const std::string& failure,
                        const std::string& separator);

} // namespace TavoRemotingLib
} // namespace Brenmoor
