#include "model/PayloadRegistry.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class RegistryTest : public ::testing::Test {
protected:
    static PollRequest Request(const std::vector<std::string>& ids, double timeoutSeconds = 0) {
        PollRequest request;
        request.ids = ids;
        request.timeoutSeconds = timeoutSeconds;
        request.peerPresent = [] {
            return true;
        };
        return request;
    }

    void Queue(const std::string& id, const std::string& tag) {
        registry.Change(id, [&](Payload& payload) {
            Command command;
            command.tag = tag;
            payload.commands.Add(command, 0);
        });
    }

    void PlanShutdown(const std::string& id, double at) {
        registry.Change(id, [at](Payload& payload) { payload.shutdownAt = at; });
    }

    static std::string Tags(const PollResult& result) {
        std::string tags;
        for (const auto& item : result.commands) {
            tags += item.id + ":" + item.command.tag + " ";
        }
        return tags;
    }

    static Command::State FirstState(const PayloadRegistry& registry, const std::string& id) {
        Command::State state = Command::State::Answered;
        registry.Look([&](const PayloadRegistry::Payloads& payloads) {
            payloads.at(id).commands.Each([&](const Command& command) {
                state = command.state;
                return false;
            });
        });
        return state;
    }

    Clock clock;
    Vehicle vehicle;
    Changes changes;
    PayloadRegistry registry{clock, vehicle, changes};
};

TEST_F(RegistryTest, GivesCommandsInTheOrderOfTheIdsAndOnlyOnce) {
    Queue("b", "1");
    Queue("a", "2");
    Queue("a", "3");
    Queue("other", "4");
    PollRequest request = Request({"a", "b"});
    request.maxCommands = 2;
    EXPECT_EQ(Tags(registry.Poll(request)), "a:2 a:3 ");
    EXPECT_EQ(Tags(registry.Poll(request)), "b:1 ");
    EXPECT_EQ(registry.Poll(request).end, PollResult::End::TimedOut);
    EXPECT_EQ(FirstState(registry, "other"), Command::State::Queued);
}

TEST_F(RegistryTest, DeliversAgainWhatGotNoAnswerWhenAskedTo) {
    Clock still(0);
    PayloadRegistry eager(still, vehicle, changes, 1000, 60);
    eager.Change("a", [](Payload& payload) {
        Command command;
        command.tag = "1";
        payload.commands.Add(command, 0);
    });
    EXPECT_EQ(Tags(eager.Poll(Request({"a"}))), "a:1 ");
    still.Step(59);
    EXPECT_EQ(Tags(eager.Poll(Request({"a"}))), "");
    still.Step(1);
    EXPECT_EQ(Tags(eager.Poll(Request({"a"}))), "a:1 ");
    EXPECT_EQ(Tags(eager.Poll(Request({"a"}))), "");
}

TEST_F(RegistryTest, APollForNoCommandsLeavesThemQueued) {
    Queue("a", "1");
    PollRequest request = Request({"a"});
    request.maxCommands = 0;
    EXPECT_EQ(registry.Poll(request).end, PollResult::End::TimedOut);
    EXPECT_EQ(FirstState(registry, "a"), Command::State::Queued);
}

TEST_F(RegistryTest, HoldsAPollUntilACommandComes) {
    PollResult result;
    std::thread poller([&] { result = registry.Poll(Request({"a"}, 50)); });
    while (registry.HeldPolls() != 1) {
        std::this_thread::yield();
    }
    Queue("b", "not for it");
    Queue("a", "1");
    poller.join();
    EXPECT_EQ(result.end, PollResult::End::News);
    EXPECT_EQ(Tags(result), "a:1 ");
    EXPECT_FALSE(result.fix.has_value());
    EXPECT_EQ(registry.HeldPolls(), 0U);
}

TEST_F(RegistryTest, TimesOutNotBeforeItsTime) {
    const double begin = clock.Seconds();
    EXPECT_EQ(registry.Poll(Request({"a"}, 0.2)).end, PollResult::End::TimedOut);
    EXPECT_GE(clock.Seconds() - begin, 0.2);
}

TEST_F(RegistryTest, TellsAShutdownOnlyWhenItIsDueAndAskedFor) {
    PlanShutdown("a", clock.Seconds() + 0.2);
    PollRequest request = Request({"x", "a"});
    request.shutdown = true;
    EXPECT_EQ(registry.Poll(request).end, PollResult::End::TimedOut);
    request.timeoutSeconds = 50;
    const PollResult result = registry.Poll(request);
    EXPECT_EQ(result.end, PollResult::End::News);
    EXPECT_TRUE(result.shutdown);
    registry.Look([](const auto& payloads) { EXPECT_TRUE(payloads.at("a").shutdownTold); });
    EXPECT_TRUE(registry.Poll(request).shutdown) << "it is told until it is settled";
    EXPECT_EQ(registry.Poll(Request({"a"})).end, PollResult::End::TimedOut);
}

TEST_F(RegistryTest, TellsEveryPayloadEachFixOnce) {
    PollRequest first = Request({"a"}, 50);
    first.gps = true;
    const PollResult one = registry.Poll(first);
    ASSERT_TRUE(one.fix.has_value());
    const PollResult two = registry.Poll(first);
    ASSERT_TRUE(two.fix.has_value());
    EXPECT_GT(two.fix->number, one.fix->number);
    PollRequest second = Request({"a", "b"});
    second.gps = true;
    EXPECT_TRUE(registry.Poll(second).fix.has_value()) << "it is new to b";
}

TEST_F(RegistryTest, KeepsNewsFromAPeerThatHasHungUp) {
    std::atomic<bool> present{true};
    PollRequest request = Request({"a"}, 50);
    request.peerPresent = [&] {
        return present.load();
    };
    PollResult result;
    std::thread poller([&] { result = registry.Poll(request); });
    while (registry.HeldPolls() != 1) {
        std::this_thread::yield();
    }
    present = false;
    Queue("a", "1");
    poller.join();
    EXPECT_EQ(result.end, PollResult::End::PeerGone);
    EXPECT_EQ(Tags(registry.Poll(Request({"a"}))), "a:1 ");
}

TEST_F(RegistryTest, ClosingEndsHeldAndLaterPolls) {
    PollResult result;
    std::thread poller([&] { result = registry.Poll(Request({"a"}, 50)); });
    while (registry.HeldPolls() != 1) {
        std::this_thread::yield();
    }
    registry.Close();
    poller.join();
    EXPECT_EQ(result.end, PollResult::End::Closed);
    EXPECT_EQ(registry.Poll(Request({"a"}, 50)).end, PollResult::End::Closed);
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
