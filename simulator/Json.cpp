#include "Json.h"

#include <Poco/JSON/Parser.h>
#include <Poco/String.h>
#include <Poco/TextConverter.h>
#include <Poco/UTF8Encoding.h>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

JsonObject NewObject() {
    return JsonObject(Poco::JSON_PRESERVE_KEY_ORDER);
}

std::string JsonText(const std::string& text) {
    const Poco::UTF8Encoding encoding;
    Poco::TextConverter converter(encoding, encoding);
    std::string valid;
    converter.convert(text, valid);
    return valid;
}

JsonObject::Ptr ParseObject(const std::string& text, const std::string& what) {
    try {
        Poco::JSON::Parser parser(new Poco::JSON::ParseHandler(/* bPreserveObjectOrder = */ true));
        const Poco::Dynamic::Var parsed = parser.parse(text);
        if (parsed.type() == typeid(JsonObject::Ptr)) {
            return parsed.extract<JsonObject::Ptr>();
        }
    } catch (const Poco::Exception&) {
        throw BadRequest(what + " is not valid JSON");
    }
    throw BadRequest(what + " is not a JSON object");
}

JsonObject::Ptr ParseMembers(const std::string& text, const std::string& what) {
    const std::string trimmed = Poco::trim(text);
    const bool braced = trimmed.size() > 1 && trimmed.front() == '{' && trimmed.back() == '}';
    return ParseObject(braced ? trimmed : "{" + text + "}", what);
}

JsonObject PositionJson(const World& world, const Fix& fix) {
    JsonObject position = NewObject();
    position.set("latitude", fix.latitudeDegrees);
    position.set("longitude", fix.longitudeDegrees);
    position.set("timeFix", world.clock.UnixSeconds(world.vehicle.TimeOfFix(fix.number)));
    return position;
}

Reply JsonReply(const JsonObject& object) {
    std::ostringstream text;
    object.stringify(text);
    Reply reply;
    reply.type = "application/json";
    reply.body = text.str() + "\n";
    return reply;
}

} // namespace TavoSimulator
} // namespace Brenmoor
