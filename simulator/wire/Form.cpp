#include "Form.h"

#include <Poco/Exception.h>
#include <Poco/Net/MessageHeader.h>
#include <Poco/Net/NameValueCollection.h>
#include <Poco/String.h>
#include <map>
#include <optional>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Traits = std::istream::traits_type;

constexpr std::size_t largestField = std::size_t{64} * 1024;
constexpr std::size_t mostHeaderLines = 20;
constexpr std::size_t mostParts = 100;
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

/// The file name that a header line states, as it stands there.
std::string FileNameIn(const std::string& line) {
    const std::string mark = "; filename=\"";
    const std::size_t begin = line.find(mark);
    const std::size_t end = line.rfind('"');
    return begin == std::string::npos || end < begin + mark.size()
               ? ""
               : line.substr(begin + mark.size(), end - begin - mark.size());
}

void TakeHeaderLine(const std::string& line, FormPart& part) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) {
        throw BadRequest("A form part has a header line without a colon");
    }
    const std::string name = line.substr(0, colon);
    part.headers.push_back(name);
    if (Poco::icompare(name, "content-disposition") == 0) {
        std::string disposition;
        Poco::Net::NameValueCollection parameters;
        Poco::Net::MessageHeader::splitParameters(line.substr(colon + 1), disposition, parameters);
        part.name = parameters.get("name", "");
        part.fileName = FileNameIn(line);
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

bool PartReader::Next(FormPart& part) {
    if (!started) {
        started = true;
        std::ostringstream preamble;
        Read(preamble, longestHeaderLine);
    }
    if (AtLastBoundary()) {
        return false;
    }
    part = FormPart();
    for (std::string line = HeaderLine(); !line.empty(); line = HeaderLine()) {
        if (part.headers.size() == mostHeaderLines) {
            throw BadRequest("A form part has too many header lines");
        }
        TakeHeaderLine(line, part);
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

namespace {

std::string ReadParts(const Request& request, std::ostream& file, std::uintmax_t limit,
                      std::vector<FormPart>& parts) {
    PartReader reader(request.body, Boundary(request.Header("Content-Type")));
    std::map<std::string, std::string> fields;
    for (FormPart part; reader.Next(part);) {
        if (fields.count(part.name) != 0) {
            throw BadRequest("A form part comes twice");
        }
        if (parts.size() == mostParts) {
            throw BadRequest("The form has too many parts");
        }
        std::ostringstream text;
        const bool isFile = part.name == "file";
        reader.Read(isFile ? file : text, isFile ? limit : std::uintmax_t{largestField});
        part.text = text.str();
        fields[part.name] = part.text;
        parts.push_back(part);
    }
    for (const char* const part : {"file", "filename", "submit"}) {
        if (fields.count(part) == 0) {
            throw BadRequest(std::string("Form part '") + part + "' is missing");
        }
    }
    return fields["filename"];
}

} // namespace

std::string ReadForm(const Request& request, std::ostream& file, std::uintmax_t limit) {
    std::vector<FormPart> parts;
    std::string fileName;
    std::optional<Refusal> refused;
    try {
        fileName = ReadParts(request, file, limit, parts);
    } catch (const Refusal& refusal) {
        refused = refusal;
    }
    for (const std::string& flag : FormFlags(parts)) {
        request.flag(flag);
    }
    if (refused) {
        request.flag(refused->what());
        throw Refusal(*refused);
    }
    return fileName;
}

std::string ReadTextForm(const Request& request, std::uintmax_t limit) {
    std::ostringstream file;
    ReadForm(request, file, limit);
    std::string text = file.str();
    if (text.empty() || text.back() != '\0') {
        request.flag("the text does not end in a zero byte");
        return text;
    }
    text.pop_back();
    return text;
}

} // namespace TavoSimulator
} // namespace Brenmoor
