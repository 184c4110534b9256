#include "Json.h"

#include <Poco/DateTimeFormatter.h>
#include <Poco/String.h>
#include <Poco/Timestamp.h>
#include <algorithm>
#include <json/reader.h>
#include <json/writer.h>
#include <memory>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string Quoted(const char* name) {
    return "Member '" + std::string(name) + "'";
}

Json::StreamWriterBuilder OneLine() {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = 15;
    return builder;
}

bool Parse(const std::string& text, Json::Value& value, std::string* mistakes = nullptr) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["stackLimit"] = 200;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    try {
        return reader->parse(text.data(), text.data() + text.size(), &value, mistakes);
    } catch (const std::exception&) {
        return false; // nested too deeply
    }
}

} // namespace

Json::Value ParseObject(const std::string& text, const std::string& what) {
    Json::Value value;
    if (!Parse(text, value)) {
        throw BadRequest(what + " is not valid JSON");
    }
    if (!value.isObject()) {
        throw BadRequest(what + " is not a JSON object");
    }
    return value;
}

Json::Value ParseFileObject(const std::string& text) {
    Json::Value value;
    std::string mistakes;
    if (!Parse(text, value, &mistakes)) {
        // "* Line 1, Column 2\n  What it is\n", and more of the same.
        std::istringstream lines(mistakes);
        std::string place;
        std::string what;
        std::getline(lines, place);
        std::getline(lines, what);
        throw FileMistake(place.empty() ? "nested too deeply"
                                        : place.substr(2) + ": " + Poco::trim(what));
    }
    if (!value.isObject()) {
        throw FileMistake("not a JSON object");
    }
    return value;
}

Json::Value ParseMembers(const std::string& text, const std::string& what) {
    return ParseObject(HasBraces(text) ? text : "{" + text + "}", what);
}

bool HasBraces(const std::string& text) {
    const std::string trimmed = Poco::trim(text);
    return trimmed.size() > 1 && trimmed.front() == '{' && trimmed.back() == '}';
}

std::string JsonLine(const Json::Value& value) {
    static const Json::StreamWriterBuilder builder = OneLine();
    return Json::writeString(builder, value);
}

Reply JsonReply(const Json::Value& value) {
    Reply reply;
    reply.type = "application/json";
    reply.body = JsonLine(value) + "\n";
    return reply;
}

std::string TimeText(double unixSeconds) {
    const auto microseconds = static_cast<Poco::Timestamp::TimeVal>(unixSeconds * 1e6);
    return Poco::DateTimeFormatter::format(Poco::Timestamp(microseconds), "%Y-%m-%dT%H:%M:%S.%iZ");
}

Members::Members(const Json::Value& theObject, std::initializer_list<const char*> known)
    : object(theObject) {
    for (const std::string& name : object.getMemberNames()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            throw BadRequest("Member '" + name + "' is not known here");
        }
    }
}

bool Members::Has(const char* name) const {
    return object.isMember(name);
}

bool Members::IsNull(const char* name) const {
    return object[name].isNull();
}

std::string Members::Text(const char* name) const {
    if (!object[name].isString()) {
        throw BadRequest(Quoted(name) + " must be a string");
    }
    return object[name].asString();
}

std::string Members::Filled(const char* name) const {
    std::string text = Text(name);
    if (text.empty()) {
        throw BadRequest(Quoted(name) + " is empty");
    }
    return text;
}

bool Members::Flag(const char* name) const {
    if (!object[name].isBool()) {
        throw BadRequest(Quoted(name) + " must be true or false");
    }
    return object[name].asBool();
}

bool Members::OptionalFlag(const char* name) const {
    return Has(name) && Flag(name);
}

double Members::Number(const char* name, double least, double most) const {
    const Json::Value& value = object[name];
    if (!value.isNumeric() || value.asDouble() < least || value.asDouble() > most) {
        throw BadRequest(Quoted(name) + " must be a number from " + JsonLine(least) + " to " +
                         JsonLine(most));
    }
    return value.asDouble();
}

std::uint64_t Members::Count(const char* name, std::uint64_t least, std::uint64_t most) const {
    const Json::Value& value = object[name];
    if (!value.isUInt64() || value.asUInt64() < least || value.asUInt64() > most) {
        throw BadRequest(Quoted(name) + " must be a whole number from " + std::to_string(least) +
                         " to " + std::to_string(most));
    }
    return value.asUInt64();
}

const Json::Value& Members::Value(const char* name) const {
    return object[name];
}

} // namespace TavoSimulator
} // namespace Brenmoor
