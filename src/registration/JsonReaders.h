#pragma once

#include <json/value.h>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {

/// The object that `text` holds. A text that does not both begin with "{" and end with "}", white
/// space aside, is taken as a list of members and put into braces. Throws std::runtime_error with
/// jsoncpp's list of errors, or jsoncpp's own exception for deep nesting.
Json::Value StringToJson(const std::string& text);

/// The file's bytes. Throws std::invalid_argument when there are more than 32768, and
/// std::length_error when the file cannot be opened, std::ios_base::failure when it cannot be read.
std::string FileToString(const std::string& fileName);

/// The object that the file holds. Throws what the two above throw.
Json::Value FileToJson(const std::string& fileName);

} // namespace TavoRemotingLib
} // namespace Brenmoor
