#pragma once

#include <cstdint>

namespace Brenmoor {
namespace TavoSimulator {

/// One position fix. Fixes are numbered from 0 in the order in which they are taken.
struct Fix {
    std::int64_t number;
    double latitudeDegrees;
    double longitudeDegrees;
};

/// A vehicle that sails one slow circle after the other and takes a fix at even intervals.
/// Everything is a function of the time given, so threads share a vehicle freely.
class Vehicle {
public:
    explicit Vehicle(double fixIntervalSeconds = 1.0);

    /// The newest fix at `seconds` after the start.
    Fix FixAt(double seconds) const;

    /// When the fix of this number is taken, in seconds after the start.
    double TimeOfFix(std::int64_t number) const;

private:
    const double fixIntervalSeconds;
};

} // namespace TavoSimulator
} // namespace Brenmoor
