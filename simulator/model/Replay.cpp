#include "Replay.h"
#include "wire/Json.h"

#include <Poco/Base64Decoder.h>
#include <Poco/Exception.h>
#include <algorithm>
#include <istream>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string FromBase64(const std::string& text) {
    std::istringstream encoded(text);
    Poco::Base64Decoder decoder(encoded);
    decoder.exceptions(std::ios::badbit); // else a wrong character is an end
    std::string bytes;
    try {
        char byte = '\0';
        while (decoder.get(byte)) {
            bytes += byte;
        }
    } catch (const Poco::DataFormatException&) {
        throw FileMistake("member 'reply' is not base64");
    }
    return bytes;
}

/// Lets a journal have members that this does not know.
std::string Text(const Json::Value& exchange, const char* name) {
    if (!exchange[name].isString()) {
        throw FileMistake("member '" + std::string(name) + "' must be a string");
    }
    return exchange[name].asString();
}

double Number(const Json::Value& exchange, const char* name) {
    if (!exchange[name].isNumeric() || exchange[name].asDouble() < 0) {
        throw FileMistake("member '" + std::string(name) + "' must be a number from 0 on");
    }
    return exchange[name].asDouble();
}

Replay::Recorded ReplyOf(const Json::Value& exchange) {
    constexpr double greatestStatus = 999;
    Replay::Recorded recorded;
    recorded.bytes = FromBase64(Text(exchange, "reply"));
    const double size = Number(exchange, "replyBytes");
    if (static_cast<double>(recorded.bytes.size()) != size) {
        throw FileMistake("the reply is not whole: " + std::to_string(recorded.bytes.size()) +
                          " of " + std::to_string(static_cast<std::uint64_t>(size)) +
                          " bytes are here; remove the line to replay the others");
    }
    recorded.seconds = Number(exchange, "seconds");
    recorded.status = static_cast<int>(std::min(Number(exchange, "status"), greatestStatus));
    recorded.reason = Text(exchange, "reason");
    recorded.fault = exchange["fault"].isNull() ? "" : Text(exchange, "fault");
    return recorded;
}

} // namespace

Replay::Replay(std::istream& journal) {
    std::size_t number = 0;
    for (std::string line; std::getline(journal, line);) {
        ++number;
        try {
            Add(line);
        } catch (const FileMistake& mistake) {
            throw FileMistake("line " + std::to_string(number) + ": " + mistake.what());
        }
    }
}

void Replay::Add(const std::string& line) {
    const Json::Value exchange = ParseFileObject(line);
    const std::string method = Text(exchange, "method");
    const std::string target = Text(exchange, "target");
    if (exchange["open"] != Json::Value(true) && !method.empty()) {
        replies[{method, target}].recorded.push_back(ReplyOf(exchange));
    }
}

std::optional<Replay::Recorded> Replay::Next(const std::string& method, const std::string& target) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = replies.find({method, target});
    if (found == replies.end()) {
        return std::nullopt;
    }
    Replies& all = found->second;
    all.given = std::min(all.given + 1, all.recorded.size());
    return all.recorded[all.given - 1];
}

} // namespace TavoSimulator
} // namespace Brenmoor
