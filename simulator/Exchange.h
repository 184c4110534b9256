#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <stdexcept>
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
};

/// The answer "200 OK" with the body "OK".
Reply Ok();

/// Ends the handling of a request with an answer that is not OK and a body of one line.
class Refusal : public std::runtime_error {
public:
    Refusal(int status, const std::string& reason, const std::string& line);
    ~Refusal() override;

    int status;
    std::string reason;
    /// When not empty, the methods that the target takes.
    std::string allow;
};

/// A Refusal with "400 Bad Request".
Refusal BadRequest(const std::string& line);

/// One request, taken apart. Used by the thread that serves it.
class Request {
public:
    /// Splits the target into path and decoded query parameters.
    /// Throws a Refusal for an escape that is cut short or not hexadecimal.
    Request(std::string method, std::string target, std::istream& body);

    const std::string method;
    const std::string target;
    std::string path;
    /// In the order of the query; a name may come more than once.
    std::vector<std::pair<std::string, std::string>> parameters;
    std::string contentType;
    std::istream& body;
    /// False once the other side has hung up.
    std::function<bool()> peerPresent = [] {
        return true;
    };

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
