// Polls on a clock that stands still and is stepped: what happens does not depend on real time.

#include "model/PayloadRegistry.h"
#include "wire/Refusal.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

constexpr double start = 1000;

class StandingClock : public ::testing::Test {
protected:
    ~StandingClock() override {
        registry.Close();
        if (poller.joinable()) {
            poller.join();
        }
    }

    void Hold(const std::vector<std::string>& ids, double timeoutSeconds, bool shutdown = false,
              bool gps = false) {
        PollRequest request;
        request.ids = ids;
        request.timeoutSeconds = timeoutSeconds;
        request.shutdown = shutdown;
        request.gps = gps;
        request.peerPresent = [this] {
            ++looks;
            return true;
        };
        poller = std::thread([this, request] { result = registry.Poll(request); });
        AwaitHeld();
    }

    void AwaitHeld() const {
        while (registry.HeldPolls() != 1) {
            std::this_thread::yield();
        }
    }

    /// Steps the clock, and returns when the poll has looked at it and is held again.
    void StepAndStayHeld(double seconds) {
        const int before = looks;
        clock.Step(seconds);
        registry.Wake();
        while (looks == before) {
            std::this_thread::yield();
        }
        AwaitHeld();
    }

    PollResult StepAndEnd(double seconds) {
        clock.Step(seconds);
        registry.Wake();
        poller.join();
        return result;
    }

    void Queue(const std::string& id, const std::string& tag) {
        registry.Change(id, [&](Payload& payload) {
            Command command;
            command.tag = tag;
            payload.commands.Add(command, 0);
        });
    }

    std::size_t HeldFor(const std::string& id) const {
        std::size_t held = 0;
        registry.Look([&](const PayloadRegistry::Payloads& payloads) {
            const auto found = payloads.find(id);
            held = found == payloads.end() ? 0 : found->second.heldPolls;
        });
        return held;
    }

    Clock clock{0, start};
    Vehicle vehicle;
    Changes changes;
    PayloadRegistry registry{clock, vehicle, changes, 2};
    std::atomic<int> looks{0};
    PollResult result;
    std::thread poller;
};

TEST_F(StandingClock, AnHoursPollIsHeldForAnHourAndNoLonger) {
    Hold({"a"}, 3600);
    StepAndStayHeld(3599.75);
    EXPECT_EQ(StepAndEnd(0.25).end, PollResult::End::TimedOut);
    EXPECT_EQ(clock.Seconds(), 3600);
}

TEST_F(StandingClock, AShutdownIsToldWhenItsTimeHasCome) {
    registry.Change("a", [](Payload& payload) { payload.shutdownAt = 60; });
    Hold({"a"}, 3600, true);
    StepAndStayHeld(59.5);
    const PollResult told = StepAndEnd(0.5);
    EXPECT_EQ(told.end, PollResult::End::News);
    EXPECT_TRUE(told.shutdown);
}

TEST_F(StandingClock, EachFixIsToldAtItsTime) {
    PollRequest first;
    first.ids = {"a"};
    first.gps = true;
    first.peerPresent = [] {
        return true;
    };
    EXPECT_EQ(registry.Poll(first).fix.value().number, 0);
    Hold({"a"}, 3600, false, true);
    StepAndStayHeld(0.5);
    const PollResult next = StepAndEnd(2.75);
    ASSERT_TRUE(next.fix.has_value());
    EXPECT_EQ(next.fix->number, 3);
    EXPECT_EQ(next.fix->seconds, 3);
}

TEST_F(StandingClock, AClockThatIsSpedUpEndsAHeldPoll) {
    Hold({"a"}, 3600);
    StepAndStayHeld(0);
    clock.SetSpeed(1e5);
    registry.Wake();
    poller.join();
    EXPECT_EQ(result.end, PollResult::End::TimedOut);
    EXPECT_GE(clock.Seconds(), 3600);
}

TEST_F(StandingClock, AClockThatIsStoppedHoldsAPoll) {
    clock.SetSpeed(1);
    Hold({"a"}, 3600);
    clock.SetSpeed(0);
    StepAndStayHeld(3590);
    EXPECT_EQ(StepAndEnd(10).end, PollResult::End::TimedOut);
}

TEST_F(StandingClock, APayloadForgottenWhileItIsPolledForIsMetAnew) {
    Queue("b", "1");
    Hold({"a"}, 3600);
    EXPECT_EQ(HeldFor("a"), 1U);
    EXPECT_TRUE(registry.Forget("a"));
    AwaitHeld();
    Queue("a", "2");
    poller.join();
    ASSERT_EQ(result.commands.size(), 1U);
    EXPECT_EQ(result.commands[0].command.tag, "2");
    EXPECT_EQ(HeldFor("a"), 0U);
    EXPECT_EQ(registry.HeldPolls(), 0U);
    EXPECT_TRUE(registry.Forget("b"));
    EXPECT_FALSE(registry.Forget("b"));
}

TEST_F(StandingClock, ARefusedPollTakesNoCommand) {
    Queue("a", "1");
    Queue("b", "2");
    PollRequest request;
    request.ids = {"a", "one too many"};
    request.maxCommands = 5;
    request.peerPresent = [] {
        return true;
    };
    EXPECT_THROW(registry.Poll(request), Refusal);
    request.ids = {"a", "b"};
    EXPECT_EQ(registry.Poll(request).commands.size(), 2U);
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
