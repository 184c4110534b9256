#pragma once

#include "Changes.h"
#include "Clock.h"
#include "Payload.h"
#include "Vehicle.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

struct PollRequest {
    std::vector<std::string> ids;
    bool gps = false;
    bool shutdown = false;
    std::size_t maxCommands = 1;
    double timeoutSeconds = 0;
    /// False once the one who polls has hung up. Asked from time to time while the poll is held.
    std::function<bool()> peerPresent;
};

struct PollResult {
    enum class End { News, TimedOut, PeerGone, Closed };

    struct Item {
        std::string id;
        Command command;
    };

    End end = End::TimedOut;
    std::vector<Item> commands;
    std::optional<Fix> fix;
    bool shutdown = false;
};

/// The payloads by their identifiers, and the polls that wait for news of them. A payload comes
/// into being when it is first heard of. Every operation may be called from any thread.
class PayloadRegistry {
public:
    using Payloads = std::map<std::string, Payload>;

    /// Since each one that is held occupies a thread.
    static constexpr std::size_t mostHeldPolls = 448;

    PayloadRegistry(const Clock& clock, const Vehicle& vehicle, Changes& changes,
                    std::size_t mostPayloads = 1000, double redeliverSeconds = 0);

    /// Lets `change` work on the payload while nothing else does, then wakes the held polls.
    /// Throws a Refusal for one payload too many.
    void Change(const std::string& id, const std::function<void(Payload&)>& change);

    /// Takes note that the payload was heard of. Throws as Change does.
    void Seen(const std::string& id);

    /// Drops all that is known of a payload. False when there is none of this identifier.
    bool Forget(const std::string& id);

    /// Lets `look` read the payloads while nothing changes them.
    void Look(const std::function<void(const Payloads&)>& look) const;

    /// A number that no command, answer or packet has yet.
    std::uint64_t NewNumber();

    /// Holds the caller until one of the payloads has something that was asked for, the time is
    /// up, the one who polls has hung up, or the registry is closed. Throws as Change does, and a
    /// Refusal for one held poll too many.
    PollResult Poll(const PollRequest& request);

    /// How many polls are held at this moment.
    std::size_t HeldPolls() const;

    /// Lets held polls look again, after the clock or the vehicle got an order.
    void Wake();

    /// Ends all held polls, and every later one at once.
    void Close();

private:
    Payload& Find(const std::string& id);
    void Hold(std::unique_lock<std::mutex>& lock, const PollRequest& request, double deadline);
    void TakeCommands(const std::string& id, Payload& payload, std::size_t most,
                      PollResult& result) const;
    std::optional<PollResult> News(const PollRequest& request, double now);
    bool IsFixNew(const PollRequest& request, const Fix& fix);
    double NextLook(const PollRequest& request, double now, double deadline);

    const Clock& clock;
    const Vehicle& vehicle;
    Changes& changes;
    const std::size_t mostPayloads;
    const double redeliverSeconds;
    mutable std::mutex mutex;
    std::condition_variable changed;
    Payloads payloads;
    std::size_t heldPolls = 0;
    std::uint64_t lastNumber = 0;
    bool closed = false;
};

} // namespace TavoSimulator
} // namespace Brenmoor
