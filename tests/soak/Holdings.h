#pragma once

#include <cstddef>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

/// What the process holds at one moment.
struct Holdings {
    long descriptors = 0;
    long threads = 0;
    /// In the folder for temporary files.
    long temporaryFiles = 0;
    /// Bytes that were allocated and not freed, in all arenas.
    std::size_t heapBytes = 0;
    long residentKibibytes = 0;
};

/// Looks at the process; `temporaryFolder` is where TMPDIR points to.
Holdings Look(const std::string& temporaryFolder);

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
