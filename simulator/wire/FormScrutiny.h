#pragma once

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// One part of an upload's form.
struct FormPart {
    /// As its header states it; empty for none.
    std::string name;
    /// The same, still escaped.
    std::string fileName;
    /// The names of its header lines.
    std::vector<std::string> headers;
    /// Its content, except that of "file".
    std::string text;
};

/// What in a form, as far as it was read, is not as the client library sends it: one short text for
/// each. Parts that are missing or come twice are not told, since such a form is refused.
std::vector<std::string> FormFlags(const std::vector<FormPart>& parts);

} // namespace TavoSimulator
} // namespace Brenmoor
