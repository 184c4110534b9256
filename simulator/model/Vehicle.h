#pragma once

#include "Track.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// One position fix. Fixes are numbered from 0 in the order in which they are taken.
struct Fix {
    std::int64_t number = 0;
    /// When it was taken, in seconds after the start.
    double seconds = 0;
    Place place;
    /// What is wrong with it; empty when all is well.
    std::string error;
};

/// What can be told to a vehicle; what is absent stays as it is.
struct VehicleOrder {
    std::optional<std::vector<Place>> waypoints;
    /// Where to be at once; the track is moved along.
    std::optional<Place> place;
    std::optional<double> speedMetresPerSecond;
    std::optional<double> noiseMetres;
    std::optional<double> fixIntervalSeconds;
    std::optional<std::string> error;
};

struct VehicleState {
    Fix fix;
    double courseDegrees = 0;
    double speedMetresPerSecond = 0;
    double noiseMetres = 0;
    double fixIntervalSeconds = 0;
    std::vector<Place> track;
};

/// A vehicle that sails along a track and takes a fix at even intervals. What it does follows from
/// the time, its orders and its seed alone. Every operation may be called from any thread.
class Vehicle {
public:
    /// The seed of the noise.
    explicit Vehicle(std::uint64_t seed = 1);

    /// The newest fix at `seconds` after the start.
    Fix FixAt(double seconds) const;

    /// When the fix behind that one is taken.
    double NextFixAt(double seconds) const;

    VehicleState StateAt(double seconds) const;

    /// Gives orders, effective at `seconds`, when a fix is taken, too.
    void Order(const VehicleOrder& order, double seconds);

private:
    double Metres(double seconds) const;
    double FixCount(double seconds) const;
    Fix FixLocked(double seconds) const;
    Place Noisy(const Place& place, std::int64_t number) const;

    const std::uint64_t seed;
    mutable std::mutex mutex;
    Track track;
    double speedMetresPerSecond = 2.5;
    double noiseMetres = 0;
    double fixIntervalSeconds = 1;
    std::string error;
    // Where on the track it was, and which fix it took, when it last got an order.
    double baseSeconds = 0;
    double baseMetres = 0;
    std::int64_t baseNumber = 0;
};

} // namespace TavoSimulator
} // namespace Brenmoor
