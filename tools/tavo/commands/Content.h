#pragma once

#include "core/Progress.h"

#include <optional>
#include <string>

namespace Brenmoor {
namespace Tavo {

/// All of standard input. Throws LocalError when it cannot be read.
std::string StandardInput();

/// The bytes that pairs of hexadecimal digits stand for, white space between them allowed. Throws
/// UsageError for anything else.
std::string BytesOfHex(const std::string& text);

/// What there is to know of a file to send. Throws LocalError for one that is missing, cannot be
/// read or is a folder.
Load LoadOf(const std::string& file);

/// "1 byte", "300001 bytes".
std::string Bytes(std::uint64_t count);

} // namespace Tavo
} // namespace Brenmoor
