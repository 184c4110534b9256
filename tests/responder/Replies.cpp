#include "Replies.h"

#include <map>
#include <mutex>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

const char shortPollReply[] = R"({
    "commands": [
        {"id": "1", "command": "'t1'status"},
        {"id": "2", "command": "FILE:'t2'/tmp/settings.txt"}
    ],
    "gps": {"latitude": 36.8, "longitude": -121.8, "timeFix": 1700000000.5},
    "shutdown": true
})";

bool Has(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

/// The parameter's value; empty when it is missing.
std::string Parameter(const std::string& target, const std::string& name) {
    const std::size_t found = target.find("&" + name + "=");
    if (found == std::string::npos) {
        return std::string();
    }
    const std::size_t begin = found + name.size() + 2;
    return target.substr(begin, target.find_first_of("& ", begin) - begin);
}

bool IsNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

std::string PollBody(const std::string& count) {
    if (!IsNumber(count)) {
        return shortPollReply;
    }
    std::string body = "{\"commands\":[";
    for (unsigned long i = 1; i <= std::stoul(count); ++i) {
        const std::string number = std::to_string(i);
        body += (i > 1 ? ",{\"id\":\"" : "{\"id\":\"") + number + "\",\"command\":\"'t" + number +
                "'set pump 2 to a flow of 3.5 litres\"}";
    }
    return body + "],\"gps\":{\"latitude\":36.8,\"longitude\":-121.8,\"timeFix\":1700000000.5}}";
}

std::string Body(const std::string& target) {
    if (Has(target, "?op=poll&")) {
        return PollBody(Parameter(target, "id"));
    }
    const std::string command = Parameter(target, "cmd");
    if (Has(target, "?op=script&") && IsNumber(command)) {
        return std::string(std::stoul(command), 'x');
    }
    if (Has(target, "?op=script&") && command.compare(0, 4, "poll") == 0) {
        return PollBody(command.substr(4));
    }
    return "OK";
}

/// A refusal differs in the status line alone.
std::string Make(const std::string& target) {
    const std::string body = Body(target);
    return "HTTP/1.1 " + std::string(Has(target, "id=refused") ? "500 Refused" : "200 OK") +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}

} // namespace

const std::string& ReplyTo(const std::string& target) {
    static std::mutex mutex;
    static std::map<std::string, std::string> made;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = made.find(target);
    return found != made.end() ? found->second : made.emplace(target, Make(target)).first->second;
}

std::size_t LeastBody(const std::string& target) {
    const std::string id = Parameter(target, "id");
    const bool tells =
        target.compare(0, 5, "POST ") == 0 && id.compare(0, 1, "P") == 0 && IsNumber(id.substr(1));
    return tells ? std::stoul(id.substr(1)) : 0;
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
