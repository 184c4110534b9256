#pragma once

#include "Exchange.h"

#include <json/value.h>
#include <stdexcept>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Parses a text that is one JSON object, exactly as the standard has it.
/// Throws a Refusal that names `what` it should have been.
Json::Value ParseObject(const std::string& text, const std::string& what);

/// The same with the object's outer braces allowed to be missing, as in a registration.
Json::Value ParseMembers(const std::string& text, const std::string& what);

/// Whether a text, white space around it aside, is in braces.
bool HasBraces(const std::string& text);

/// A mistake in a file that the simulator was started with, in one line.
class FileMistake : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Parses a text from such a file. Throws a FileMistake that tells the place.
Json::Value ParseFileObject(const std::string& text);

/// A value on one line, without a line end. Text that is not valid UTF-8 is replaced.
std::string JsonLine(const Json::Value& value);

/// An answer of 200 whose body is the value on one line.
Reply JsonReply(const Json::Value& value);

/// A time in seconds since 1970 as "2026-01-02T03:04:05.678Z".
std::string TimeText(double unixSeconds);

/// The members of an object that was sent to the server. Each operation throws a Refusal that names
/// the member when it is missing or of another type.
class Members {
public:
    /// The object must outlive this. Throws a Refusal for a member that is not among `known`.
    Members(const Json::Value& object, std::initializer_list<const char*> known);

    bool Has(const char* name) const;
    bool IsNull(const char* name) const;
    std::string Text(const char* name) const;
    /// The same, and not empty.
    std::string Filled(const char* name) const;
    bool Flag(const char* name) const;
    /// False when it is absent.
    bool OptionalFlag(const char* name) const;
    double Number(const char* name, double least, double most) const;
    std::uint64_t Count(const char* name, std::uint64_t least, std::uint64_t most) const;
    const Json::Value& Value(const char* name) const;

private:
    const Json::Value& object;
};

} // namespace TavoSimulator
} // namespace Brenmoor
