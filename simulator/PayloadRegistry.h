#pragma once

#include "Clock.h"
#include "Vehicle.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// A command on its way to a payload and back.
struct Command {
    enum class State { Queued, Delivered, Answered };

    std::string tag;
    std::string text;
    bool isFile = false;
    State state = State::Queued;
};

/// What a payload said about a command. It may report several times before it is complete.
struct Answer {
    std::string tag;
    std::string text;
    bool complete = true;
    bool succeeded = true;
};

/// An upload that lies in the file store.
struct KeptFile {
    std::string operation;
    std::string name;
    std::string remote;
    std::string fileName;
    std::uintmax_t size = 0;
};

/// All that the server knows of one payload.
struct Payload {
    std::string hostId;
    /// The registration document as it came, and whether the payload said that it was the last.
    std::optional<std::string> registration;
    bool registrationComplete = false;
    bool off = false;
    std::optional<bool> mainSwitch;
    std::map<std::string, bool> switches;
    std::vector<Command> commands;
    std::vector<Answer> answers;
    std::vector<std::string> scripts;
    std::vector<std::string> packets;
    std::vector<KeptFile> files;
    /// When the payload is to be asked to shut down, on the simulator's clock.
    std::optional<double> shutdownAt;
    /// Whether a poll has brought that news.
    bool shutdownTold = false;
};

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
/// into being when it is first changed. Every operation may be called from any thread.
class PayloadRegistry {
public:
    PayloadRegistry(const Clock& clock, const Vehicle& vehicle);

    /// Lets `change` work on the payload while nothing else does, then wakes the held polls.
    void Change(const std::string& id, const std::function<void(Payload&)>& change);

    /// A copy of everything.
    std::map<std::string, Payload> Snapshot() const;

    /// Holds the caller until one of the payloads has something that was asked for, the time is
    /// up, the one who polls has hung up, or the registry is closed.
    PollResult Poll(const PollRequest& request);

    /// How many polls are held at this moment.
    std::size_t HeldPolls() const;

    /// Ends all held polls, and every later one at once.
    void Close();

private:
    std::optional<PollResult> News(const PollRequest& request, double now);
    bool IsFixNew(const PollRequest& request, const Fix& fix) const;
    double NextLook(const PollRequest& request, double now, double deadline) const;

    const Clock& clock;
    const Vehicle& vehicle;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::map<std::string, Payload> payloads;
    std::map<std::string, std::int64_t> lastFixTold;
    std::size_t heldPolls = 0;
    bool closed = false;
};

} // namespace TavoSimulator
} // namespace Brenmoor
