#include "Exchange.h"
#include "EscapedText.h"

#include <Poco/Exception.h>
#include <Poco/String.h>
#include <Poco/URI.h>
#include <algorithm>
#include <charconv>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string Decoded(const std::string& text) {
    std::string decoded;
    Poco::URI::decode(text, decoded);
    return decoded;
}

/// The client does not escape it, but those who use the client may have done so themselves.
std::string IdOfReply(const std::string& text) {
    try {
        return Decoded(text);
    } catch (const Poco::Exception&) {
        return text;
    }
}

bool IsOfReply(const std::vector<QueryPart>& parts) {
    const auto op = std::find_if(parts.begin(), parts.end(),
                                 [](const QueryPart& part) { return part.name == "op"; });
    return op != parts.end() && op->value == "reply";
}

} // namespace

Reply Ok() {
    Reply reply;
    reply.body = "OK";
    return reply;
}

std::vector<QueryPart> SplitQuery(const std::string& query) {
    std::vector<QueryPart> parts;
    for (std::size_t begin = 0; begin <= query.size();) {
        const std::size_t end = std::min(query.find('&', begin), query.size());
        const std::string text = query.substr(begin, end - begin);
        const std::size_t sign = std::min(text.find('='), text.size());
        parts.push_back({text.substr(0, sign), text.substr(std::min(sign + 1, text.size())),
                         sign < text.size()});
        begin = end + 1;
    }
    return parts;
}

Request::Request(std::string theMethod, std::string theTarget, std::istream& theBody)
    : method(std::move(theMethod)), target(std::move(theTarget)), body(theBody) {
    try {
        const Poco::URI uri(target);
        path = uri.getPath();
        const std::vector<QueryPart> parts = SplitQuery(uri.getRawQuery());
        const bool isReply = IsOfReply(parts);
        for (const QueryPart& part : parts) {
            parameters.emplace_back(Decoded(part.name), isReply && part.name == "id"
                                                            ? IdOfReply(part.value)
                                                            : Decoded(part.value));
        }
    } catch (const Poco::Exception&) {
        throw BadRequest("The request target has a broken escape");
    }
}

std::string Request::Header(const std::string& name) const {
    for (const auto& header : headers) {
        if (Poco::icompare(header.first, name) == 0) {
            return header.second;
        }
    }
    return "";
}

const std::string* Request::Find(const std::string& name) const {
    for (const auto& parameter : parameters) {
        if (parameter.first == name) {
            return &parameter.second;
        }
    }
    return nullptr;
}

const std::string& Request::Given(const std::string& name) const {
    const std::string* const value = Find(name);
    if (value == nullptr) {
        throw BadRequest("Parameter '" + name + "' is missing");
    }
    return *value;
}

const std::string& Request::Filled(const std::string& name) const {
    const std::string& value = Given(name);
    if (value.empty()) {
        throw BadRequest("Parameter '" + name + "' is empty");
    }
    return value;
}

bool Request::Flag(const std::string& name, bool absent) const {
    const std::string* const value = Find(name);
    if (value == nullptr) {
        return absent;
    }
    if (*value != "true" && *value != "false") {
        throw BadRequest("Parameter '" + name + "' must be true or false, not '" + Escape(*value) +
                         "'");
    }
    return *value == "true";
}

std::int64_t Request::Number(const std::string& name, std::int64_t least) const {
    const std::string& text = Given(name);
    const char* const end = text.data() + text.size();
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number < least) {
        throw BadRequest("Parameter '" + name + "' is not a usable number: '" + Escape(text) + "'");
    }
    return number;
}

void RequireMethod(const Request& request, const std::string& method) {
    if (request.method != method) {
        Refusal refusal(405, "Method Not Allowed", "This takes the method " + method + " only");
        refusal.allow = method;
        throw refusal;
    }
}

} // namespace TavoSimulator
} // namespace Brenmoor
