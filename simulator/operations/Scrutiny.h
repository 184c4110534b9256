#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// What came of a request before its content.
struct RequestHead {
    std::string method;
    std::string target;
    /// As in "HTTP/1.1".
    std::string version;
    std::vector<std::pair<std::string, std::string>> headers;
    /// Whether its connection had served another request before.
    bool connectionUsed = false;
};

/// What in a request's head is not as the client library sends it: one short text for each, none
/// twice. Of a query with very many deviations, the first ones.
std::vector<std::string> HeadFlags(const RequestHead& head);

/// The part of them that is about the method and the parameters. `query` is what stands behind the
/// target's question mark.
std::vector<std::string> QueryFlags(const std::string& method, const std::string& query);

/// Adds a flag that is not there yet, unless there are very many.
void AddFlag(std::vector<std::string>& flags, const std::string& flag);

} // namespace TavoSimulator
} // namespace Brenmoor
