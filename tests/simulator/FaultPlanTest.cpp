#include "faults/FaultPlan.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class FaultPlanTest : public ::testing::Test {
protected:
    std::string Taken(const std::string& operation) {
        const Fault* const fault = plan.Take(operation);
        return fault == nullptr ? "" : fault->name;
    }

    static ArmedFault Counted(const std::string& fault, const std::string& operation,
                              std::uint64_t count) {
        ArmedFault armed;
        armed.fault = fault;
        armed.operation = operation;
        armed.count = count;
        return armed;
    }

    Changes changes;
    FaultPlan plan{changes};
};

TEST_F(FaultPlanTest, StrikesSoManyRepliesOfItsOperation) {
    plan.Arm(Counted("silence", "poll", 2), 1);
    EXPECT_EQ(Taken("off"), "");
    EXPECT_EQ(Taken("poll"), "silence");
    EXPECT_EQ(plan.Armed()[0].hits, 1U);
    EXPECT_EQ(plan.Armed()[0].count, 1U);
    EXPECT_EQ(Taken("poll"), "silence");
    EXPECT_EQ(Taken("poll"), "");
    EXPECT_TRUE(plan.Armed().empty());
}

TEST_F(FaultPlanTest, TheFirstThatFitsStrikes) {
    plan.Arm(Counted("silence", "poll", 1), 1);
    plan.Arm(Counted("no-reply", "all", 1), 1);
    EXPECT_EQ(Taken("off"), "no-reply");
    EXPECT_EQ(Taken("poll"), "silence");
}

TEST_F(FaultPlanTest, ChancesFollowFromTheSeed) {
    ArmedFault armed;
    armed.fault = "no-reply";
    armed.probability = 0.25;
    const auto pattern = [&](std::uint64_t seed) {
        plan.Disarm(std::nullopt);
        plan.Arm(armed, seed);
        std::string struck;
        for (int i = 0; i < 4000; ++i) {
            struck += Taken("off").empty() ? '.' : 'x';
        }
        return struck;
    };
    const std::string one = pattern(1);
    EXPECT_EQ(one, pattern(1));
    EXPECT_NE(one, pattern(2));
    EXPECT_NEAR(static_cast<double>(std::count(one.begin(), one.end(), 'x')), 1000, 100);
}

TEST_F(FaultPlanTest, AnUnknownFaultIsRefused) {
    try {
        plan.Arm(Counted("no such", "all", 1), 1);
        FAIL();
    } catch (const Refusal& refusal) {
        EXPECT_EQ(refusal.status, 400);
        EXPECT_STREQ(refusal.what(), "There is no fault 'no such'");
    }
}

TEST_F(FaultPlanTest, OneThatWouldNeverOrTwiceBeOverIsRefused) {
    ArmedFault both = Counted("silence", "all", 1);
    both.probability = 1;
    ArmedFault neither = both;
    neither.count.reset();
    neither.probability.reset();
    for (const ArmedFault& armed : {both, neither, Counted("silence", "all", 0)}) {
        EXPECT_THROW(plan.Arm(armed, 1), Refusal);
    }
    EXPECT_TRUE(plan.Armed().empty());
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
