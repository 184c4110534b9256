#include "Load.h"
#include "support/Mutations.h"
#include "support/Wire.h"

#include <Poco/Exception.h>
#include <iostream>
#include <memory>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Load {

namespace {

using Real = std::chrono::steady_clock;

// The traffic keeps up to 64 MiB of what comes, and longer requests push out shorter ones.
constexpr long mostGrowthKibibytes = 64L * 1024;
constexpr unsigned slowClients = 200;

/// Whether a payload is answered, and how long that takes at the most.
class Payload {
public:
    explicit Payload(std::uint16_t thePort) : port(thePort) {}

    void Call() {
        const auto begin = Real::now();
        std::string reply;
        try {
            reply = Testing::Exchange(port, Testing::GetText("/xp?op=off&id=P1"));
        } catch (const Poco::Exception&) {
            reply.clear();
        }
        served = served && reply == Testing::okReply;
        const std::chrono::duration<double> took = Real::now() - begin;
        longestSeconds = std::max(longestSeconds, took.count());
    }

    bool Check(const std::string& title) const {
        std::cout << title << ": a payload's call took " << static_cast<int>(longestSeconds * 1000)
                  << " ms at the most\n";
        return Expect(served, "a payload was not answered");
    }

private:
    const std::uint16_t port;
    bool served = true;
    double longestSeconds = 0;
};

bool Fuzz(const Target& target, unsigned requests, std::uint64_t seed) {
    Testing::Mutations mutations(seed);
    Payload payload(target.port);
    std::size_t answered = 0;
    for (unsigned i = 0; i < requests; ++i) {
        try {
            Testing::Connection connection(target.port);
            connection.Send(mutations.Next());
            connection.EndSending();
            answered += connection.ReadAll().empty() ? 0U : 1U;
        } catch (const Poco::Exception&) {
            // Hung up on, as it should be.
            continue;
        }
        if (i % 100 == 0) {
            payload.Call();
        }
    }
    return payload.Check(std::to_string(requests) + " broken requests, of which " +
                         std::to_string(answered) + " were answered");
}

bool LieThere(const Target& target, unsigned count) {
    Payload payload(target.port);
    std::vector<std::unique_ptr<Testing::Connection>> idle;
    std::size_t refused = 0;
    for (unsigned i = 0; i < count; ++i) {
        try {
            idle.push_back(std::make_unique<Testing::Connection>(target.port));
        } catch (const Poco::Exception&) {
            ++refused;
        }
        if (i % 250 == 0) {
            payload.Call();
        }
    }
    for (int i = 0; i < 20; ++i) {
        payload.Call();
    }
    return payload.Check(std::to_string(count) + " idle connections, of which " +
                         std::to_string(refused) + " were refused");
}

/// Clients that stop in the middle of their heads.
bool Dawdle(const Target& target, unsigned count) {
    Payload payload(target.port);
    std::vector<std::unique_ptr<Testing::Connection>> slow;
    for (unsigned i = 0; i < count; ++i) {
        slow.push_back(std::make_unique<Testing::Connection>(target.port));
        slow.back()->Send("GET /xp?op=off&id=P1 HTTP/1.1\r\nHo");
        if (i % 25 == 0) {
            payload.Call();
        }
    }
    return payload.Check(std::to_string(count) + " clients that stop in their heads");
}

} // namespace

bool RunHostile(const Target& target, unsigned requests, unsigned connections) {
    // Enough that the traffic is full, and all threads were started.
    bool good = Dawdle(target, slowClients);
    good = Fuzz(target, 2 * requests, 1) && good;
    const Watch warm(target.process);
    good = Fuzz(target, requests, 2) && good;
    good = LieThere(target, connections) && good;
    good = Dawdle(target, slowClients) && good;
    return warm.Check("  from after the first requests to the end", mostGrowthKibibytes) && good;
}

} // namespace Load
} // namespace TavoSimulator
} // namespace Brenmoor
