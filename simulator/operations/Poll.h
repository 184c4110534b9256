#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

#include <json/value.h>

namespace Brenmoor {
namespace TavoSimulator {

/// Answers a poll of format 2, which is held until there is news or its time is up.
Reply AnswerPoll(World& world, const Request& request);

/// The text of a command as a poll brings it: the tag in quotes, the command behind it, and
/// "file:" in front if it is a file's name. Throws a Refusal for a tag with both kinds of quotes.
std::string CommandText(const Command& command);

/// A position as a poll brings it.
Json::Value PositionJson(const Clock& clock, const Fix& fix);

} // namespace TavoSimulator
} // namespace Brenmoor
