#pragma once

#include <chrono>
#include <sys/types.h>

namespace Brenmoor {
namespace Tavo {

/// SIGTERM and SIGINT ask the agent to stop, SIGCHLD tells that a handler may have ended; all three
/// interrupt a wait. At most one object at a time; the former actions come back with its end.
///
/// An exchange with a server that does not answer cannot be interrupted. When the program still
/// runs so long after it was asked to stop, the process ends with 0, and with it a program that is
/// told.
class Signals {
public:
    explicit Signals(std::chrono::seconds longestStop);
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals();

    bool StopRequested() const;

    /// The process group that is not to outlive this process; 0 for none.
    void Tell(pid_t group) const;

    /// Waits until a signal comes, or `descriptor` (unless it is negative) can be read or is at its
    /// end, or the time is up.
    void Wait(int descriptor, std::chrono::milliseconds longest) const;

    /// Waits so long, or until the agent is to stop.
    void Pause(std::chrono::milliseconds duration) const;
};

} // namespace Tavo
} // namespace Brenmoor
