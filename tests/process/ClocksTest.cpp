// What clocks do, and a slow server, at the edge of each limit.

#include "Clocks.h"
#include "OperationsTest.h"
#include "support/FullListener.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <future>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using namespace std::chrono_literals;
using Steady = std::chrono::steady_clock;

class SetBackClock : public OperationsTest {};

TEST_F(SetBackClock, ByAnHourInBetweenIsNotNoticedByAnyOperation) {
    for (const Operation& operation : Operations()) {
        const std::string reply = OkReply(operation.ReplyBody());
        ScriptedServer server(
            {ReadRequest(), Send(reply.substr(0, 10)), Pause(100ms), Send(reply.substr(10))});
        const auto wall = std::chrono::system_clock::now();
        const auto begin = Steady::now();
        std::thread setter([&] {
            server.WaitForConnections(1);
            Clocks::SetBackAnHour();
        });
        ExpectWorks(operation, server);
        setter.join();
        EXPECT_LT(std::chrono::system_clock::now(), wall - 3500s) << operation.name;
        EXPECT_LT(Steady::now() - begin, 60s) << operation.name;
    }
}

/// All operations at once, while the clocks run fast.
class TimeLimits : public OperationsTest {
protected:
    struct Outcome {
        std::string name;
        int code; ///< libcurl's
        Steady::duration time;
    };

    std::vector<Outcome> CallAll(const std::function<Script(const Operation&)>& script) {
        return AtOnce([&](const Operation& operation) {
            const ScriptedServer server(script(operation));
            return Call(operation, server.Address());
        });
    }

    static std::vector<Outcome> AtOnce(const std::function<Outcome(const Operation&)>& run) {
        std::vector<std::future<Outcome>> calls;
        for (const Operation& operation : Operations()) {
            calls.push_back(std::async(std::launch::async, run, operation));
        }
        std::vector<Outcome> outcomes;
        outcomes.reserve(calls.size());
        for (auto& call : calls) {
            outcomes.push_back(call.get());
        }
        return outcomes;
    }

    Outcome Call(const Operation& operation, const std::string& address) {
        HalcyrREST client(address, logger, false);
        const auto begin = Steady::now();
        int code = 0;
        try {
            operation.call(client, "P1", file);
        } catch (const CurlUtils::CurlEasyException& e) {
            code = e.code;
        }
        return {operation.name, code, Steady::now() - begin};
    }
};

/// A minute takes two seconds.
constexpr int fast = 30;

TEST_F(TimeLimits, SilentServerEndsEveryOperationAfter301Seconds) {
    const Clocks clocks(fast);
    for (const Outcome& outcome : CallAll([](const Operation&) {
             return Script{ReadRequest(), Stall()};
         })) {
        EXPECT_EQ(outcome.code, CURLE_OPERATION_TIMEDOUT) << outcome.name;
        EXPECT_GE(outcome.time, 300s) << outcome.name;
        EXPECT_LT(outcome.time, 500s) << outcome.name;
    }
}

TEST_F(TimeLimits, SilentServerEndsAPollAfterItsOwnTimeAnd61Seconds) {
    const Operation poll = {"ShortPoll",
                            "Poll",
                            "poll",
                            "",
                            false,
                            [](HalcyrREST& client, const std::string& id, const std::string&) {
                                std::vector<std::string> ids = {id};
                                HalcyrREST::ShutdownInfo shutdown;
                                client.Poll(ids, nullptr, nullptr, &shutdown, 30000, 1);
                            }};
    const ScriptedServer server(Script{ReadRequest(), Stall()});
    const Clocks clocks(fast);
    const Outcome outcome = Call(poll, server.Address());
    EXPECT_EQ(outcome.code, CURLE_OPERATION_TIMEDOUT);
    EXPECT_GE(outcome.time, 90s);
    EXPECT_LT(outcome.time, 290s);
}

TEST_F(TimeLimits, ReplyThatDripsUpToTheLimitArrives) {
    // A machine that stops for a second at the end does no harm.
    const Clocks clocks(20);
    for (const Outcome& outcome : CallAll([](const Operation& operation) {
             Script script = {ReadRequest()};
             const std::string reply = OkReply(operation.ReplyBody());
             for (std::size_t i = 0; i < reply.size(); ++i) {
                 script.push_back(PauseUntil(280000ms * (i + 1) / reply.size()));
                 script.push_back(Send(reply.substr(i, 1)));
             }
             return script;
         })) {
        EXPECT_EQ(outcome.code, 0) << outcome.name;
        EXPECT_GE(outcome.time, 240s) << outcome.name;
    }
}

TEST_F(TimeLimits, ReplyThatDripsBeyondTheLimitDoesNot) {
    const Clocks clocks(fast);
    for (const Outcome& outcome : CallAll([](const Operation&) {
             Script script = {ReadRequest(), Send("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n")};
             for (int i = 0; i < 90; ++i) {
                 script.push_back(Send("x"));
                 script.push_back(Pause(5s));
             }
             return script;
         })) {
        EXPECT_EQ(outcome.code, CURLE_OPERATION_TIMEDOUT) << outcome.name;
        EXPECT_GE(outcome.time, 300s) << outcome.name;
        EXPECT_LT(outcome.time, 500s) << outcome.name;
    }
}

TEST_F(TimeLimits, ConnectionThatIsNotMadeEndsEveryOperationAfterTenSeconds) {
    const FullListener listener;
    const Clocks clocks(5);
    for (const Outcome& outcome :
         AtOnce([&](const Operation& operation) { return Call(operation, listener.Address()); })) {
        EXPECT_EQ(outcome.code, CURLE_OPERATION_TIMEDOUT) << outcome.name;
        EXPECT_GE(outcome.time, 9900ms) << outcome.name;
        EXPECT_LT(outcome.time, 60s) << outcome.name;
    }
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
