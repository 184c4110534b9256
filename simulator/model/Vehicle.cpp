#include "Vehicle.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr Place home{57.5, 2.0};
constexpr double homeLengthMetres = 1600;
constexpr double homeWidthMetres = 600;
constexpr double homeCourseDegrees = 30;

/// From 0, inclusive, to 1, and the same on every machine.
double Uniform(std::mt19937_64& numbers) {
    return static_cast<double>(numbers() >> 11) * 0x1p-53;
}

} // namespace

Vehicle::Vehicle(std::uint64_t theSeed)
    : seed(theSeed),
      track(Track::Racetrack(home, homeLengthMetres, homeWidthMetres, homeCourseDegrees)) {}

double Vehicle::Metres(double seconds) const {
    return baseMetres + (seconds - baseSeconds) * speedMetresPerSecond;
}

double Vehicle::FixCount(double seconds) const {
    return std::floor((seconds - baseSeconds) / fixIntervalSeconds);
}

Place Vehicle::Noisy(const Place& place, std::int64_t number) const {
    if (noiseMetres <= 0) {
        return place;
    }
    std::mt19937_64 numbers(seed * 0x9E3779B97F4A7C15U + static_cast<std::uint64_t>(number));
    const double distance = noiseMetres * std::sqrt(-2 * std::log(1 - Uniform(numbers)));
    const double direction = 2 * std::acos(-1.0) * Uniform(numbers);
    return Moved(place, distance * std::cos(direction), distance * std::sin(direction));
}

Fix Vehicle::FixLocked(double seconds) const {
    const double count = FixCount(seconds);
    Fix fix;
    fix.number = baseNumber + static_cast<std::int64_t>(count);
    fix.seconds = baseSeconds + count * fixIntervalSeconds;
    fix.place = Noisy(track.At(Metres(fix.seconds)), fix.number);
    fix.error = error;
    return fix;
}

Fix Vehicle::FixAt(double seconds) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return FixLocked(std::max(seconds, baseSeconds));
}

double Vehicle::NextFixAt(double seconds) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return baseSeconds + (FixCount(std::max(seconds, baseSeconds)) + 1) * fixIntervalSeconds;
}

VehicleState Vehicle::StateAt(double seconds) const {
    const std::lock_guard<std::mutex> lock(mutex);
    VehicleState state;
    state.fix = FixLocked(std::max(seconds, baseSeconds));
    state.courseDegrees = track.CourseDegrees(Metres(state.fix.seconds));
    state.speedMetresPerSecond = speedMetresPerSecond;
    state.noiseMetres = noiseMetres;
    state.fixIntervalSeconds = fixIntervalSeconds;
    state.track = track.Waypoints();
    return state;
}

void Vehicle::Order(const VehicleOrder& order, double seconds) {
    const std::lock_guard<std::mutex> lock(mutex);
    seconds = std::max(seconds, baseSeconds);
    baseNumber = FixLocked(seconds).number + 1;
    baseMetres = Metres(seconds);
    baseSeconds = seconds;
    if (order.waypoints) {
        track = Track(*order.waypoints);
        baseMetres = 0;
    }
    if (order.place) {
        track.MoveTo(*order.place, baseMetres);
    }
    speedMetresPerSecond = order.speedMetresPerSecond.value_or(speedMetresPerSecond);
    noiseMetres = order.noiseMetres.value_or(noiseMetres);
    fixIntervalSeconds = order.fixIntervalSeconds.value_or(fixIntervalSeconds);
    error = order.error.value_or(error);
}

} // namespace TavoSimulator
} // namespace Brenmoor
