#pragma once

#include <chrono>

namespace Brenmoor {
namespace TavoSimulator {

/// The one clock of a simulator: seconds since it started, and the same moment as Unix time.
/// Never changes after construction, so threads share it freely.
class Clock {
public:
    /// Seconds since the clock was made; never runs backwards.
    double Seconds() const;

    /// The Unix time of the moment that was `seconds` after the start.
    double UnixSeconds(double seconds) const;

private:
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    const std::chrono::system_clock::time_point unixStart = std::chrono::system_clock::now();
};

} // namespace TavoSimulator
} // namespace Brenmoor
