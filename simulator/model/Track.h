#pragma once

#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// A place on the sea. Latitude is positive to the north, longitude to the east.
struct Place {
    double latitudeDegrees = 0;
    double longitudeDegrees = 0;
};

/// The place so many metres to the north and east of another, on a sphere and for distances of
/// some kilometres.
Place Moved(const Place& from, double northMetres, double eastMetres);

/// A closed way over the sea, straight from one waypoint to the next and from the last to the
/// first.
class Track {
public:
    /// At least one waypoint; a single one is a place to stay at.
    explicit Track(const std::vector<Place>& waypoints);

    /// Two straights joined by half circles to the right, from the start of the first straight.
    static Track Racetrack(const Place& start, double lengthMetres, double widthMetres,
                           double courseDegrees);

    std::vector<Place> Waypoints() const;

    /// The place after sailing so far along the track, as often around as it takes.
    Place At(double metres) const;

    /// The course at that place, in degrees clockwise from north; 0 on a single place.
    double CourseDegrees(double metres) const;

    /// Moves the whole track so that At(metres) is this place.
    void MoveTo(const Place& place, double metres);

private:
    /// Metres from the first waypoint.
    struct Offset {
        double north;
        double east;
    };
    struct Leg {
        Offset from;
        Offset way;
        double begin;
        double length;
    };

    /// Both throw std::invalid_argument for no waypoints.
    static const Place& First(const std::vector<Place>& waypoints);
    static std::vector<Offset> Offsets(const std::vector<Place>& waypoints);

    Track(const Place& origin, std::vector<Offset> points);
    const Leg& LegAt(double& metres) const;
    Offset OffsetAt(double metres) const;

    Place origin;
    std::vector<Offset> points;
    std::vector<Leg> legs;
    double length = 0;
};

} // namespace TavoSimulator
} // namespace Brenmoor
