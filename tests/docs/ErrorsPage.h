#pragma once

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A row of a table of docs/errors.md whose first column is a message and its second a type.
struct ErrorRow {
    std::string message; ///< as it stands there
    std::string type;

    /// Whether this very exception is meant: the type exactly, and the message with anything in the
    /// place of each ⟨…⟩.
    bool Means(const std::string& thrownType, const std::string& thrownMessage) const;
};

/// A row of the table of libcurl's codes.
struct CodeRow {
    int code;
    std::string text;
};

std::vector<ErrorRow> ErrorRows();
std::vector<CodeRow> CodeRows();

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
