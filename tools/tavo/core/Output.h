#pragma once

#include "core/Style.h"

#include <json/value.h>
#include <string>

namespace Brenmoor {
namespace Tavo {

/// Standard output: text for people, one line of JSON for programs, or nothing.
class Output {
public:
    enum class Mode { Text, Json, Quiet };

    explicit Output(Mode mode);

    /// The command's result. `text` is printed as it is.
    void Result(const std::string& text, const Json::Value& value) const;

    /// Colours for standard output.
    const Style& Colours() const;

private:
    const Mode mode;
    const Style style;
};

/// One line without a line end, in ASCII. Numbers are as short as they can be and still exact.
std::string JsonLine(const Json::Value& value);

/// Writes to standard output, and throws LocalError when that fails.
void Print(const std::string& text);

} // namespace Tavo
} // namespace Brenmoor
