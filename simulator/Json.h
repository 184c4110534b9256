#pragma once

#include "Exchange.h"
#include "World.h"

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

using JsonObject = Poco::JSON::Object;
using JsonArray = Poco::JSON::Array;

/// An empty object whose members stay in the order in which they are set.
JsonObject NewObject();

/// A text fit for JSON: invalid UTF-8 is replaced by question marks.
std::string JsonText(const std::string& text);

/// Parses a text that is one JSON object. Throws a Refusal that names `what` it should have been.
JsonObject::Ptr ParseObject(const std::string& text, const std::string& what);

/// The same with the object's outer braces allowed to be missing, as in a registration.
JsonObject::Ptr ParseMembers(const std::string& text, const std::string& what);

/// A position as a poll brings it.
JsonObject PositionJson(const World& world, const Fix& fix);

/// An answer of 200 whose body is the object on one line.
Reply JsonReply(const JsonObject& object);

} // namespace TavoSimulator
} // namespace Brenmoor
