#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

std::string Truncated(const Occasion& occasion) {
    return FirstHalf(occasion.healthy.body);
}

std::string WithTail(const Occasion& occasion) {
    return occasion.healthy.body + "\x01garbage}]";
}

std::string WithSecondValue(const Occasion& occasion) {
    return occasion.healthy.body + "{\"error\": \"second\"}";
}

std::string WithByteOrderMark(const Occasion& occasion) {
    return "\xEF\xBB\xBF" + occasion.healthy.body;
}

std::string WithComments(const Occasion& occasion) {
    return "/* a comment */ // and another\n" + occasion.healthy.body;
}

void Html(Line& line, const Occasion&) {
    Reply reply = WithBody(Reply(), "<!DOCTYPE html><title>Welcome</title>\n");
    reply.type = "text/html";
    line.Send(ReplyText(reply));
}

/// A good answer that also has a member of lists nested so deep.
std::string Nested(std::size_t depth) {
    return R"({"commands": [$COMMAND], "x": )" + std::string(depth, '[') + std::string(depth, ']') +
           "}";
}

std::string WithText(const std::string& text) {
    return R"({"commands": [{"id": $ID, "command": "'t1'a)" + text + R"(b"}]})";
}

} // namespace

std::vector<Fault> JsonFaults() {
    return {
        {"json-truncated", "the first half of the body, with its right length", When::InReply,
         WithBodyMade(Truncated)},
        {"json-tail", "garbage behind the body", When::InReply, WithBodyMade(WithTail)},
        {"json-second-value", "a second value behind the body", When::InReply,
         WithBodyMade(WithSecondValue)},
        {"json-bom", "a byte order mark before the body", When::InReply,
         WithBodyMade(WithByteOrderMark)},
        {"json-comments", "comments before the body", When::InReply, WithBodyMade(WithComments)},
        {"json-html", "200 OK with a page of HTML", When::Instead, Html},
        Answer("json-blank", "a body of white space", " \r\n\t"),
        Answer("json-word", "a bare word", "pong"),
        Answer("json-quotes", "single quotes in the place of double ones", "{'timeout': true}"),
        Answer("json-open", "an object that is not closed", R"({"timeout": true)"),
        Answer("json-no-braces", "an object without its braces, which is fine",
               R"("commands": [$COMMAND])"),
        Answer("json-comma", "a comma behind the last member", R"({"timeout": true,})"),
        Answer("json-deep", "lists nested 2000 deep", Nested(2000)),
        Answer("json-nearly-too-deep", "lists nested 900 deep", Nested(900)),
        Answer("json-list", "a list in the place of the object", R"([{"timeout": true}])"),
        Answer("json-text", "a text in the place of the object", R"("timeout")"),
        Answer("json-number", "a number in the place of the object", "42"),
        Answer("json-true", "true in the place of the object", "true"),
        Answer("json-null", "null in the place of the object", "null"),
        Answer("json-empty-object", "an object without members", "{}"),
        Answer("json-duplicate-keys", "every member twice, the second time another",
               R"({"timeout": true, "timeout": false, "commands": [], "commands": [$COMMAND]})"),
        Answer("json-bad-utf-8", "bytes in a text that are no UTF-8", WithText("\xC3\x28\xFF")),
        Answer("json-nul", "a zero byte in a text", WithText(std::string(1, '\0'))),
        Answer("json-nul-escaped", "an escaped zero byte in a text", WithText("\\u0000")),
        Answer("json-control", "a line feed in a text, not escaped", WithText("\n")),
        Answer("json-lone-surrogate", "half of an escaped pair in a text", WithText("\\ud800")),
        Answer("json-bad-escape", "an escape that JSON does not have", WithText("\\x41")),
        Answer("json-text-open", "a text that is not closed", R"({"error": "no end})"),
        Answer("json-nan", "NaN in the place of a number", R"({"x": NaN, "timeout": true})"),
        Answer("json-overflow", "a number beyond all numbers", R"({"x": 1e400, "timeout": true})"),
        Answer("json-leading-zero", "a number with a zero before it",
               R"({"x": 01, "timeout": true})"),
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
