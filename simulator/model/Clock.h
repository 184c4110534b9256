#pragma once

#include <chrono>
#include <mutex>
#include <optional>

namespace Brenmoor {
namespace TavoSimulator {

/// The one clock of a simulator: seconds since it started, and the same moment as Unix time. It can
/// run faster than the real one, stand still and be stepped, but never runs backwards.
/// Every operation may be called from any thread.
class Clock {
public:
    /// `speed` is in simulated seconds for each real one; 0 lets the clock stand still. It starts
    /// at the present Unix time unless told otherwise.
    explicit Clock(double speed = 1.0, std::optional<double> unixStart = std::nullopt);

    /// Simulated seconds since the clock was made.
    double Seconds() const;

    /// The Unix time of the moment that was `seconds` after the start.
    double UnixSeconds(double seconds) const;

    double Speed() const;

    /// The speed from now on, 0 or more.
    void SetSpeed(double speed);

    /// Puts the clock forward by so many seconds, 0 or more.
    void Step(double seconds);

    /// The real time that so many simulated seconds take at the present speed; at most an hour,
    /// since whoever waits is to look again when the speed has changed.
    std::chrono::duration<double> RealTime(double seconds) const;

private:
    using Real = std::chrono::steady_clock;

    double SecondsLocked() const;

    const double unixStart;
    mutable std::mutex mutex;
    double speed;
    Real::time_point realBase = Real::now();
    double base = 0;
};

} // namespace TavoSimulator
} // namespace Brenmoor
