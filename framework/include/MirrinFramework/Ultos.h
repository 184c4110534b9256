#pragma once

#include <MirrinFramework/Export.h>

#include <string>

namespace Brenmoor {
namespace MirrinFramework {

/// The digits of `value` in `base` (2 to 36), padded with zeros on the left to at least `width`
/// characters. Digits above 9 are capitals; `flags` 1 makes them small letters, 0 is the default.
/// Independent of any locale. Throws std::invalid_argument for another base.
MIRRIN_EXPORT std::string ultos(unsigned long value, unsigned base, unsigned width, unsigned flags);

} // namespace MirrinFramework
} // namespace Brenmoor
