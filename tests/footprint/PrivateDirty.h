#pragma once

#include <iosfwd>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

/// Writes the private dirty memory of this process in KiB: a line "total", then a line for each
/// mapped file that has any, "(no file)" standing for heap, stack and zeroed data.
///
/// With a `guestBase` only the 4 GiB from there count. It is the address at which qemu-arm was told
/// to put its guest's memory (-B), since it shows a guest the pages of its own whole process.
void PrintPrivateDirty(std::ostream& out, const char* guestBase);

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
