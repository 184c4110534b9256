#include "Parts.h"

#include <json/writer.h>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr char goodCommand[] = R"({"id": $ID, "command": "'t1'go"})";
constexpr char goodPosition[] = R"({"latitude": 59.9, "longitude": 10.7, "timeFix": 1700000000})";

void Replace(std::string& text, const std::string& name, const std::string& by) {
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += by.size()) {
        text.replace(at, name.size(), by);
    }
}

} // namespace

std::string StatusText(const Reply& reply) {
    return "HTTP/1.1 " + std::to_string(reply.status) + " " + reply.reason + "\r\n";
}

std::string TypeText(const Reply& reply) {
    return "Content-Type: " + reply.type + "\r\n";
}

std::string LengthText(std::size_t length) {
    return "Content-Length: " + std::to_string(length) + "\r\n";
}

std::string HeadText(const Reply& reply, const std::string& lines) {
    return StatusText(reply) + TypeText(reply) + lines + "Connection: close\r\n\r\n";
}

std::string HeadText(const Reply& reply) {
    return HeadText(reply, LengthText(reply.body.size()));
}

std::string ReplyText(const Reply& reply) {
    return HeadText(reply) + reply.body;
}

Reply WithBody(Reply reply, const std::string& body) {
    reply.body = body;
    return reply;
}

std::string FirstHalf(const std::string& text) {
    return text.substr(0, text.size() / 2);
}

Play Sends(Text text) {
    return [text = std::move(text)](Line& line, const Occasion& occasion) {
        line.Send(text(occasion));
    };
}

Play SendsThenHolds(Text text) {
    return [text = std::move(text)](Line& line, const Occasion& occasion) {
        line.Send(text(occasion));
        line.Hold();
    };
}

Play SendsThenResets(Text text) {
    return [text = std::move(text)](Line& line, const Occasion& occasion) {
        line.Send(text(occasion));
        line.Reset();
    };
}

Play WithStatusLine(const std::string& line) {
    return Sends([line](const Occasion& occasion) {
        const std::string reply = ReplyText(occasion.healthy);
        return line + reply.substr(reply.find("\r\n"));
    });
}

Play WithHeaderLine(const std::string& line) {
    return Sends([line](const Occasion& occasion) {
        const Reply& reply = occasion.healthy;
        return HeadText(reply, line + "\r\n" + LengthText(reply.body.size())) + reply.body;
    });
}

Play WithFraming(const std::string& lines) {
    return Sends([lines](const Occasion& occasion) {
        return HeadText(occasion.healthy, lines) + occasion.healthy.body;
    });
}

Play WithBodyMade(Text body) {
    return Sends([body = std::move(body)](const Occasion& occasion) {
        return ReplyText(WithBody(occasion.healthy, body(occasion)));
    });
}

Play Answers(const std::string& json) {
    return Sends([json](const Occasion& occasion) {
        Reply reply = WithBody(occasion.healthy, json);
        reply.type = "application/json";
        Replace(reply.body, "$COMMAND", goodCommand);
        Replace(reply.body, "$GPS", goodPosition);
        Replace(reply.body, "$ID", Json::valueToQuotedString(occasion.id.c_str()));
        return ReplyText(reply);
    });
}

Fault Answer(const char* name, const char* summary, const std::string& json) {
    Fault fault{name, summary, Fault::When::Instead, {}};
    fault.play = Answers(json);
    return fault;
}

} // namespace TavoSimulator
} // namespace Brenmoor
