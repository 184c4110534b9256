#pragma once

#include <map>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

/// Stands in for the functions of the C library that can fail, for the whole process: those that
/// give memory, and those that open, read, write, wait and connect (FaultyCalls.cpp has the list).
/// They are defined in the program, where the linker finds them before the C library's own, from
/// every shared object. While it lives, it counts them and makes them fail. One at a time; the
/// process must have one thread only meanwhile.
class Faults {
public:
    /// Fails the call with that number (the first is 0), and all after it when `andLater`. Calls
    /// that release something do so nevertheless, except for unlink(). A negative one fails none.
    Faults(long number, bool andLater);
    Faults(const Faults&) = delete;
    Faults& operator=(const Faults&) = delete;
    ~Faults();
};

/// What the last Faults has counted.
struct Counted {
    long calls = 0;
    std::map<std::string, long> callsByName;
    std::string firstFailed; ///< the name of the first call that was failed, if any was
    long failedUnlinks = 0;
};
Counted LastCounted();

/// Blocks of memory that were obtained and not released, since the process began.
long LiveBlocks();

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor
