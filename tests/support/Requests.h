#pragma once

#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// The bytes of a GET of `target` from the server with that address.
std::string GetRequest(const std::string& address, const std::string& target);

/// The bytes of an upload to `target`: the file named `path` with that content, in a form with
/// that boundary.
std::string UploadRequest(const std::string& address, const std::string& target,
                          const std::string& path, const std::string& content,
                          const std::string& boundary);

/// `text` with `replacement` in place of every `part`.
std::string Replaced(std::string text, const std::string& part, const std::string& replacement);

/// A well-formed reply with that status ("500 Internal Server Error") and an empty body.
std::string StatusReply(const std::string& status);

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
