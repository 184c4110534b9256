#pragma once

#include "Refusal.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// What the simulator answers. A status line that ends in " OK" tells the client of success.
struct Reply {
    int status = 200;
    std::string reason = "OK";
    std::string type = "text/plain";
    std::string body;
    /// When not empty, the body is this file of the disk instead.
    std::string filePath;
    /// When set, the body is what this writes, in pieces, until it returns. The stream fails once
    /// the other side has hung up.
    std::function<void(std::ostream&)> stream;
    /// When not empty, the methods that the target takes.
    std::string allow;
    /// Further header lines.
    std::vector<std::pair<std::string, std::string>> headers;
};

/// The answer "200 OK" with the body "OK".
Reply Ok();

/// What stands between two "&" of a query, split at its first "=" and still escaped.
struct QueryPart {
    std::string name;
    std::string value;
    bool hasValue = false;
};

std::vector<QueryPart> SplitQuery(const std::string& query);

/// One request, taken apart. Used by the thread that serves it.
class Request {
public:
    /// Splits the target into path and decoded query parameters. A plus sign stands for itself, and
    /// so does the percent sign of a broken escape in the identifier of a reply.
    /// Throws a Refusal for an escape that is cut short or not hexadecimal.
    Request(std::string method, std::string target, std::istream& body);

    const std::string method;
    const std::string target;
    std::string path;
    /// In the order of the query; a name may come more than once.
    std::vector<std::pair<std::string, std::string>> parameters;
    std::vector<std::pair<std::string, std::string>> headers;
    std::istream& body;
    /// False once the other side has hung up.
    std::function<bool()> peerPresent = [] {
        return true;
    };

    /// Takes note of something in the request that is not as the client library sends it.
    std::function<void(const std::string&)> flag = [](const std::string&) {
    };

    /// The value of the first header line of this name, in any case; empty when there is none.
    std::string Header(const std::string& name) const;
    /// The first parameter of this name, or null.
    const std::string* Find(const std::string& name) const;
    /// The same; throws a Refusal when it is missing.
    const std::string& Given(const std::string& name) const;
    /// The same; throws a Refusal when it is missing or empty.
    const std::string& Filled(const std::string& name) const;
    /// "true" or "false", or `absent` when it is missing; throws a Refusal for anything else.
    bool Flag(const std::string& name, bool absent) const;
    /// A decimal number from `least` on; throws a Refusal when it is missing or anything else.
    std::int64_t Number(const std::string& name, std::int64_t least) const;
};

/// Throws a Refusal unless the request has this method.
void RequireMethod(const Request& request, const std::string& method);

} // namespace TavoSimulator
} // namespace Brenmoor
