#include "Clock.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr double longestSeconds = 3600;

double UnixNow() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

} // namespace

Clock::Clock(double theSpeed, std::optional<double> theUnixStart)
    : unixStart(theUnixStart ? *theUnixStart : UnixNow()), speed(theSpeed) {}

double Clock::SecondsLocked() const {
    return base + speed * std::chrono::duration<double>(Real::now() - realBase).count();
}

double Clock::Seconds() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return SecondsLocked();
}

double Clock::UnixSeconds(double seconds) const {
    return unixStart + seconds;
}

double Clock::Speed() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return speed;
}

void Clock::SetSpeed(double theSpeed) {
    const std::lock_guard<std::mutex> lock(mutex);
    base = SecondsLocked();
    realBase = Real::now();
    speed = theSpeed;
}

void Clock::Step(double seconds) {
    const std::lock_guard<std::mutex> lock(mutex);
    base += seconds;
}

std::chrono::duration<double> Clock::RealTime(double seconds) const {
    const double atSpeed = Speed();
    const double real = atSpeed > 0 ? seconds / atSpeed : longestSeconds;
    return std::chrono::duration<double>(std::clamp(real, 0.0, longestSeconds));
}

} // namespace TavoSimulator
} // namespace Brenmoor
