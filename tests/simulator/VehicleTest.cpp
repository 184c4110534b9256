#include "model/Vehicle.h"

#include <cmath>
#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

double MetresBetween(const Place& one, const Place& other) {
    const double north = (other.latitudeDegrees - one.latitudeDegrees) * 111195;
    const double east = (other.longitudeDegrees - one.longitudeDegrees) * 111195 *
                        std::cos(one.latitudeDegrees * std::acos(-1.0) / 180);
    return std::hypot(north, east);
}

TEST(Track, GoesStraightFromOneWaypointToTheNextAndBackToTheFirst) {
    const Track track({{0, 0}, {0, 0.1}, {0.1, 0.1}});
    EXPECT_NEAR(track.At(0).longitudeDegrees, 0, 1e-12);
    EXPECT_NEAR(track.At(11119.5 / 2).longitudeDegrees, 0.05, 1e-6);
    EXPECT_NEAR(track.CourseDegrees(1), 90, 1e-9);
    EXPECT_NEAR(track.At(11119.5 * 1.5).latitudeDegrees, 0.05, 1e-6);
    EXPECT_NEAR(track.CourseDegrees(11120), 0, 1e-9);
    EXPECT_NEAR(track.CourseDegrees(2 * 11119.5 + 1), 225, 1e-3);
    const double around = 11119.5 * (2 + std::sqrt(2));
    EXPECT_NEAR(track.At(around + 100).longitudeDegrees, track.At(100).longitudeDegrees, 1e-6);
}

TEST(Track, ASinglePlaceIsStayedAt) {
    const Track track({{12, 34}});
    EXPECT_EQ(track.At(1e6).latitudeDegrees, 12);
    EXPECT_EQ(track.At(1e6).longitudeDegrees, 34);
    EXPECT_EQ(track.CourseDegrees(5), 0);
    EXPECT_THROW(Track(std::vector<Place>{}), std::invalid_argument);
}

TEST(Track, CrossesTheDateLineTheShortWay) {
    const Track track({{0, 179.9}, {0, -179.9}});
    EXPECT_NEAR(track.CourseDegrees(1), 90, 1e-9);
    EXPECT_NEAR(std::abs(track.At(11119.5).longitudeDegrees), 180, 1e-6);
}

TEST(Track, RacetrackIsClosedAndSmooth) {
    const Track track = Track::Racetrack({57, 2}, 1000, 400, 0);
    EXPECT_NEAR(track.CourseDegrees(500), 0, 1e-9);
    EXPECT_NEAR(track.CourseDegrees(1000 + 628 + 500), 180, 1e-9);
    double before = 0;
    for (double metres = 0; metres < 4000; metres += 10) {
        EXPECT_LT(MetresBetween(track.At(before), track.At(metres)), 10.1);
        before = metres;
    }
}

TEST(Vehicle, TakesAFixASecondAndSailsAtItsSpeed) {
    const Vehicle vehicle;
    EXPECT_EQ(vehicle.FixAt(0).number, 0);
    EXPECT_EQ(vehicle.FixAt(0.999).number, 0);
    EXPECT_EQ(vehicle.FixAt(7.0).number, 7);
    EXPECT_EQ(vehicle.FixAt(7.9).seconds, 7.0);
    EXPECT_EQ(vehicle.NextFixAt(7.9), 8.0);
    EXPECT_NEAR(MetresBetween(vehicle.FixAt(100).place, vehicle.FixAt(200).place), 250, 1);
}

TEST(Vehicle, AnOrderIsNewsAtOnce) {
    Vehicle vehicle;
    VehicleOrder order;
    order.place = Place{-33, 151};
    order.error = "cold start";
    order.fixIntervalSeconds = 10;
    vehicle.Order(order, 7.5);
    const Fix fix = vehicle.FixAt(7.5);
    EXPECT_EQ(fix.number, 8);
    EXPECT_EQ(fix.seconds, 7.5);
    EXPECT_EQ(fix.error, "cold start");
    EXPECT_NEAR(fix.place.latitudeDegrees, -33, 1e-9);
    EXPECT_NEAR(fix.place.longitudeDegrees, 151, 1e-9);
    EXPECT_EQ(vehicle.NextFixAt(7.5), 17.5);
    EXPECT_EQ(vehicle.FixAt(17.4).number, 8);
    EXPECT_EQ(vehicle.FixAt(17.5).number, 9);
}

TEST(Vehicle, NoiseFollowsFromTheSeed) {
    VehicleOrder noisy;
    noisy.noiseMetres = 10;
    Vehicle one(1);
    Vehicle same(1);
    Vehicle other(2);
    for (Vehicle* const vehicle : {&one, &same, &other}) {
        vehicle->Order(noisy, 0);
    }
    EXPECT_EQ(one.FixAt(5).place.latitudeDegrees, same.FixAt(5).place.latitudeDegrees);
    EXPECT_NE(one.FixAt(5).place.latitudeDegrees, other.FixAt(5).place.latitudeDegrees);
    const Vehicle quiet;
    double sum = 0;
    for (int second = 0; second < 1000; ++second) {
        sum += std::pow(MetresBetween(one.FixAt(second).place, quiet.FixAt(second).place), 2);
    }
    EXPECT_NEAR(std::sqrt(sum / 2000), 10, 1);
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
