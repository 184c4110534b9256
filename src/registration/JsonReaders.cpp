#include "registration/JsonReaders.h"
#include "registration/Text.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <fstream>
#include <iterator>
#include <json/reader.h>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

constexpr std::streamoff maxFileSize = 32768;

// jsoncpp has deprecated Json::Reader. Its successor words its errors differently, and hosts know
// these; every use is in this function, and only here is the compiler told to accept it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Json::Value Parse(std::string_view text) {
    Json::Reader reader;
    Json::Value value;
    if (!reader.parse(text.data(), text.data() + text.size(), value, false)) {
        throw std::runtime_error(reader.getFormatedErrorMessages());
    }
    return value;
}
#pragma GCC diagnostic pop

void ThrowIfLarge(std::streamoff size, const std::string& fileName) {
    if (size > maxFileSize) {
        throw std::invalid_argument("File cannot be larger than 32K (" + fileName + ")");
    }
}

} // namespace

Json::Value StringToJson(const std::string& text) {
    const std::string_view trimmed = Trimmed(text);
    if (HasBraces(trimmed)) {
        return Parse(trimmed);
    }
    // Documents travel without their outer braces, so they are put back here, deliberately whenever
    // one of the two is missing.
    return Parse("{" + std::string(trimmed) + "}");
}

std::string FileToString(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    ThrowIfLarge(size, fileName);
    std::string content;
    // A file that could not be opened has the size -1, which is more than a string can reserve:
    // the std::length_error of this line is what tells the caller.
    content.reserve(static_cast<std::size_t>(size));
    file.seekg(0, std::ios::beg);
    std::istreambuf_iterator<char> next(file);
    for (const std::istreambuf_iterator<char> end; next != end; ++next) {
        content += *next;
        // A device has no size and need not have an end.
        ThrowIfLarge(static_cast<std::streamoff>(content.size()), fileName);
    }
    return content;
}

Json::Value FileToJson(const std::string& fileName) {
    // Read once outside the handler, so that what is wrong with the file itself is never reworded,
    // and once more for the parse.
    const std::string firstReading = FileToString(fileName);
    try {
        return StringToJson(FileToString(fileName));
    } catch (const HalcyrREST::JSONParsingError& e) {
        // Deliberately no wider: a text that is not JSON keeps the JSON library's own words.
        throw HalcyrREST::JSONParsingError("Failed to parse payload registration in file '" +
                                           fileName + "'\n" + e.what() + "\n");
    }
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
