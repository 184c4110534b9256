#include "Form.h"

#include <Poco/Exception.h>
#include <Poco/Net/MessageHeader.h>
#include <Poco/Net/NameValueCollection.h>
#include <Poco/String.h>
#include <map>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Traits = std::istream::traits_type;

constexpr std::size_t largestText = std::size_t{16} * 1024 * 1024;
constexpr std::size_t largestField = std::size_t{64} * 1024;
constexpr std::size_t longestHeaderLine = std::size_t{8} * 1024;

std::string Boundary(const std::string& contentType) {
    std::string type;
    Poco::Net::NameValueCollection parameters;
    Poco::Net::MessageHeader::splitParameters(contentType, type, parameters);
    const std::string boundary = parameters.get("boundary", "");
    if (Poco::icompare(type, "multipart/form-data") != 0 || boundary.empty()) {
        throw BadRequest("The content is not a multipart form with a boundary");
    }
    return boundary;
}

/// The name that a header line states, if it is the line to do so.
void TakeName(const std::string& line, std::string& name) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) {
        throw BadRequest("A form part has a header line without a colon");
    }
    if (Poco::icompare(line.substr(0, colon), "content-disposition") == 0) {
        std::string disposition;
        Poco::Net::NameValueCollection parameters;
        Poco::Net::MessageHeader::splitParameters(line.substr(colon + 1), disposition, parameters);
        name = parameters.get("name", "");
    }
}

} // namespace

PartReader::PartReader(std::istream& theIn, const std::string& boundary)
    : in(theIn), delimiter("\r\n--" + boundary) {}

char PartReader::Get() {
    const auto next = in.get();
    if (Traits::eq_int_type(next, Traits::eof())) {
        throw BadRequest("The form ends before its last boundary");
    }
    return Traits::to_char_type(next);
}

std::string PartReader::HeaderLine() {
    std::string line;
    for (char next = Get(); next != '\n'; next = Get()) {
        line += next;
        if (line.size() > longestHeaderLine) {
            throw BadRequest("A form part has an overlong header line");
        }
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

bool PartReader::AtLastBoundary() {
    const std::string next{Get(), Get()};
    if (next != "--" && next != "\r\n") {
        throw BadRequest("A form boundary is followed by other text");
    }
    return next == "--";
}

bool PartReader::Next(std::string& name) {
    if (!started) {
        started = true;
        std::ostringstream preamble;
        Read(preamble, longestHeaderLine);
    }
    if (AtLastBoundary()) {
        return false;
    }
    name.clear();
    for (std::string line = HeaderLine(); !line.empty(); line = HeaderLine()) {
        TakeName(line, name);
    }
    return true;
}

void PartReader::Read(std::ostream& out, std::uintmax_t limit) {
    std::uintmax_t written = 0;
    const auto put = [&](const char* bytes, std::size_t count) {
        written += count;
        if (written > limit) {
            throw TooLarge("Form part is larger than " + std::to_string(limit) + " bytes");
        }
        out.write(bytes, static_cast<std::streamsize>(count));
    };
    while (matched < delimiter.size()) {
        const char next = Get();
        if (next == delimiter[matched]) {
            ++matched;
            continue;
        }
        // The delimiter's first character occurs nowhere else in it, so what matched so far is
        // data, and only this character can begin a new match.
        put(delimiter.data(), matched);
        matched = next == delimiter[0] ? 1 : 0;
        if (matched == 0) {
            put(&next, 1);
        }
    }
    matched = 0;
}

std::string ReadForm(const Request& request, std::ostream& file, std::uintmax_t limit) {
    PartReader reader(request.body, Boundary(request.Header("Content-Type")));
    std::map<std::string, std::string> fields;
    std::string name;
    while (reader.Next(name)) {
        if (fields.count(name) != 0) {
            throw BadRequest("A form part comes twice");
        }
        std::ostringstream text;
        reader.Read(name == "file" ? file : text,
                    name == "file" ? limit : std::uintmax_t{largestField});
        fields[name] = text.str();
    }
    for (const char* const part : {"file", "filename", "submit"}) {
        if (fields.count(part) == 0) {
            throw BadRequest(std::string("Form part '") + part + "' is missing");
        }
    }
    return fields["filename"];
}

std::string ReadTextForm(const Request& request) {
    std::ostringstream file;
    ReadForm(request, file, largestText);
    std::string text = file.str();
    if (!text.empty() && text.back() == '\0') {
        text.pop_back();
    }
    return text;
}

} // namespace TavoSimulator
} // namespace Brenmoor
