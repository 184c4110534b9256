#pragma once

#include <chrono>

namespace Brenmoor {
namespace Tavo {

/// SIGTERM and SIGINT ask the agent to stop, SIGCHLD tells that a handler may have ended; all three
/// interrupt a wait. At most one object at a time; the former actions come back with its end.
class Signals {
public:
    Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals();

    bool StopRequested() const;

    /// Waits until a signal comes, or `descriptor` (unless it is negative) can be read or is at its
    /// end, or the time is up.
    void Wait(int descriptor, std::chrono::milliseconds longest) const;

    /// Waits so long, or until the agent is to stop.
    void Pause(std::chrono::milliseconds duration) const;
};

} // namespace Tavo
} // namespace Brenmoor
