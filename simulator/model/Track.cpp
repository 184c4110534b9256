#include "Track.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double metresPerDegree = 111195;
constexpr int pointsPerTurn = 8;

double Radians(double degrees) {
    return degrees * pi / 180;
}

/// A degree of longitude is shorter than one of latitude, and vanishes at the poles.
double Shrink(double latitudeDegrees) {
    return std::max(std::cos(Radians(latitudeDegrees)), 1e-6);
}

} // namespace

Place Moved(const Place& from, double northMetres, double eastMetres) {
    const double latitude = from.latitudeDegrees + northMetres / metresPerDegree;
    const double longitude =
        from.longitudeDegrees + eastMetres / metresPerDegree / Shrink(from.latitudeDegrees);
    return Place{std::clamp(latitude, -90.0, 90.0), std::remainder(longitude, 360)};
}

Track::Track(const std::vector<Place>& waypoints) : Track(First(waypoints), Offsets(waypoints)) {}

const Place& Track::First(const std::vector<Place>& waypoints) {
    if (waypoints.empty()) {
        throw std::invalid_argument("A track needs a waypoint");
    }
    return waypoints.front();
}

std::vector<Track::Offset> Track::Offsets(const std::vector<Place>& waypoints) {
    const Place& first = First(waypoints);
    std::vector<Offset> offsets;
    for (const Place& place : waypoints) {
        // The short way round.
        const double degrees = std::remainder(place.longitudeDegrees - first.longitudeDegrees, 360);
        offsets.push_back({(place.latitudeDegrees - first.latitudeDegrees) * metresPerDegree,
                           degrees * metresPerDegree * Shrink(first.latitudeDegrees)});
    }
    return offsets;
}

Track::Track(const Place& theOrigin, std::vector<Offset> thePoints)
    : origin(theOrigin), points(std::move(thePoints)) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Offset& from = points[i];
        const Offset& to = points[(i + 1) % points.size()];
        const Offset way{to.north - from.north, to.east - from.east};
        const double metres = std::hypot(way.north, way.east);
        if (metres > 0) {
            legs.push_back({from, way, length, metres});
            length += metres;
        }
    }
}

Track Track::Racetrack(const Place& start, double lengthMetres, double widthMetres,
                       double courseDegrees) {
    const double north = std::cos(Radians(courseDegrees));
    const double east = std::sin(Radians(courseDegrees));
    const double radius = widthMetres / 2;
    std::vector<Offset> offsets{{0, 0}};
    for (const bool far : {true, false}) {
        // The near turn ends where the track begins.
        for (int i = 0; i <= pointsPerTurn - (far ? 0 : 1); ++i) {
            const double angle = pi * i / pointsPerTurn;
            const double ahead =
                far ? lengthMetres + radius * std::sin(angle) : -radius * std::sin(angle);
            const double right = radius + (far ? -1 : 1) * radius * std::cos(angle);
            offsets.push_back({ahead * north - right * east, ahead * east + right * north});
        }
    }
    return Track(start, std::move(offsets));
}

std::vector<Place> Track::Waypoints() const {
    std::vector<Place> waypoints;
    for (const Offset& point : points) {
        waypoints.push_back(Moved(origin, point.north, point.east));
    }
    return waypoints;
}

const Track::Leg& Track::LegAt(double& metres) const {
    metres = std::fmod(metres, length);
    const auto behind =
        std::upper_bound(legs.begin(), legs.end(), metres,
                         [](double value, const Leg& leg) { return value < leg.begin; });
    return *std::prev(behind);
}

Track::Offset Track::OffsetAt(double metres) const {
    if (legs.empty()) {
        return points.front();
    }
    const Leg& leg = LegAt(metres);
    const double part = (metres - leg.begin) / leg.length;
    return Offset{leg.from.north + leg.way.north * part, leg.from.east + leg.way.east * part};
}

Place Track::At(double metres) const {
    const Offset offset = OffsetAt(metres);
    return Moved(origin, offset.north, offset.east);
}

double Track::CourseDegrees(double metres) const {
    if (legs.empty()) {
        return 0;
    }
    const Leg& leg = LegAt(metres);
    const double degrees = std::atan2(leg.way.east, leg.way.north) * 180 / pi;
    return degrees < 0 ? degrees + 360 : degrees;
}

void Track::MoveTo(const Place& place, double metres) {
    const Offset offset = OffsetAt(metres);
    origin.latitudeDegrees = place.latitudeDegrees - offset.north / metresPerDegree;
    origin.longitudeDegrees =
        place.longitudeDegrees - offset.east / metresPerDegree / Shrink(origin.latitudeDegrees);
}

} // namespace TavoSimulator
} // namespace Brenmoor
