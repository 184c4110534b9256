#pragma once

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// One part of a multipart form, as it stood on the wire.
struct FormPart {
    std::string head; ///< its header lines, each with its CR LF
    std::string body;
};

/// The header lines of a request up to the empty line, each with its CR LF.
std::string RequestHead(const std::string& request);

/// The parts of the form that a request carries, in their order. Throws std::runtime_error when the
/// request does not carry exactly a form.
std::vector<FormPart> FormParts(const std::string& request);

/// The boundary between the parts, as the request's Content-Type names it.
std::string FormBoundary(const std::string& request);

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
