#include "Vehicle.h"

#include <cmath>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double centreLatitudeDegrees = 57.5;
constexpr double centreLongitudeDegrees = 2.0;
// About one kilometre, sailed in 40 minutes: some 5 knots.
constexpr double radiusDegrees = 0.009;
constexpr double secondsPerRound = 2400.0;

} // namespace

Vehicle::Vehicle(double theFixIntervalSeconds) : fixIntervalSeconds(theFixIntervalSeconds) {}

Fix Vehicle::FixAt(double seconds) const {
    const auto number = static_cast<std::int64_t>(std::floor(seconds / fixIntervalSeconds));
    const double angle = 2 * pi * TimeOfFix(number) / secondsPerRound;
    // A degree of longitude is shorter than one of latitude by the cosine of the latitude.
    const double shrink = std::cos(centreLatitudeDegrees * pi / 180);
    return Fix{number, centreLatitudeDegrees + radiusDegrees * std::cos(angle),
               centreLongitudeDegrees + radiusDegrees * std::sin(angle) / shrink};
}

double Vehicle::TimeOfFix(std::int64_t number) const {
    return static_cast<double>(number) * fixIntervalSeconds;
}

} // namespace TavoSimulator
} // namespace Brenmoor
