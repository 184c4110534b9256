#include "core/Output.h"

#include "core/Failure.h"

#include <cerrno>
#include <json/reader.h>
#include <json/writer.h>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

namespace {

std::string Written(const Json::Value& value, unsigned precision) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = precision;
    return Json::writeString(builder, value);
}

bool Reads(const std::string& text, const Json::Value& expected) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    return reader->parse(text.data(), text.data() + text.size(), &value, nullptr) &&
           value == expected;
}

} // namespace

std::string JsonLine(const Json::Value& value) {
    const std::string line = Written(value, 15);
    return Reads(line, value) ? line : Written(value, 17);
}

void Print(const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(STDOUT_FILENO, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            throw LocalError("cannot write to standard output: " +
                                 std::generic_category().message(errno),
                             "check where it goes");
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

Output::Output(Mode outputMode) : mode(outputMode), style(STDOUT_FILENO) {}

void Output::Result(const std::string& text, const Json::Value& value) const {
    if (mode == Mode::Text) {
        Print(text);
    } else if (mode == Mode::Json) {
        Print(JsonLine(value) + "\n");
    }
}

const Style& Output::Colours() const {
    return style;
}

} // namespace Tavo
} // namespace Brenmoor
