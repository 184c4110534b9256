#include "model/Clock.h"

#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

TEST(Clock, StandsStillAndIsStepped) {
    Clock clock(0, 1e9);
    EXPECT_EQ(clock.Seconds(), 0);
    clock.Step(3600);
    EXPECT_EQ(clock.Seconds(), 3600);
    EXPECT_EQ(clock.UnixSeconds(clock.Seconds()), 1e9 + 3600);
    EXPECT_EQ(clock.RealTime(1), std::chrono::duration<double>(3600));
}

TEST(Clock, RunsAtItsSpeedWithoutAJumpWhenItChanges) {
    Clock clock(1000);
    EXPECT_EQ(clock.Speed(), 1000);
    EXPECT_DOUBLE_EQ(clock.RealTime(500).count(), 0.5);
    EXPECT_EQ(clock.RealTime(-1).count(), 0);
    EXPECT_EQ(clock.RealTime(1e10).count(), 3600);
    while (clock.Seconds() < 10) {
    }
    clock.SetSpeed(0);
    const double stopped = clock.Seconds();
    EXPECT_GE(stopped, 10);
    EXPECT_EQ(clock.Seconds(), stopped);
    clock.SetSpeed(1);
    EXPECT_LT(clock.Seconds(), stopped + 10);
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
