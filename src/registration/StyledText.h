#pragma once

#include <json/writer.h>
#include <memory>
#include <sstream>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {

/// Makes the same text of values as Json::Value::toStyledString(), which sets up its writer anew
/// for each one and spends most of its time on that. For lists, whose elements are written one by
/// one.
class StyledText {
public:
    StyledText();

    /// The text of a value without comments.
    std::string Of(const Json::Value& value);

private:
    const std::unique_ptr<Json::StreamWriter> writer;
    std::ostringstream out;
};

} // namespace TavoRemotingLib
} // namespace Brenmoor
