#pragma once

#include "History.h"

#include <cstdint>
#include <json/value.h>
#include <map>
#include <optional>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// A command on its way to a payload and back.
struct Command {
    enum class State { Queued, Delivered, Answered };

    std::uint64_t number = 0;
    std::string tag;
    std::string text;
    bool isFile = false;
    State state = State::Queued;
    /// When it was last delivered or answered in part, on the simulator's clock.
    double deliveredAt = 0;
    /// What the last answer said, once there is one that is complete.
    std::optional<bool> succeeded;
};

/// What a payload said about a command. It may report several times before it is complete.
struct Answer {
    std::uint64_t number = 0;
    /// The number of the command, or 0 when none with its tag waits for an answer.
    std::uint64_t command = 0;
    std::string tag;
    std::string text;
    bool complete = true;
    bool succeeded = true;
};

struct RunScript {
    std::string command;
    std::string output;
    /// Absent when it was not run for real, or when a signal ended it.
    std::optional<int> exitStatus;
    /// Why it was killed; empty when it was not.
    std::string killed;
};

struct Packet {
    std::uint64_t number = 0;
    std::string bytes;
};

/// An upload that lies in the file store.
struct KeptFile {
    std::string operation;
    std::string name;
    std::string remote;
    std::string fileName;
    std::string sha256;
    std::uintmax_t size = 0;
};

/// All that the server knows of one payload.
struct Payload {
    std::string hostId;
    /// The registration document, and whether the payload said that it was the last.
    std::optional<Json::Value> registration;
    bool registrationComplete = false;
    bool off = false;
    std::optional<bool> mainSwitch;
    std::map<std::string, bool> switches;
    /// Those that are not answered yet are never dropped.
    History<Command> commands;
    History<Answer> answers;
    History<RunScript> scripts;
    History<Packet> packets;
    History<KeptFile> files;
    /// When the payload is to be asked to shut down, on the simulator's clock.
    std::optional<double> shutdownAt;
    /// Whether a poll has brought that news.
    bool shutdownTold = false;
    /// The last exchange, on the simulator's clock.
    double lastSeen = 0;
    std::size_t heldPolls = 0;
    std::int64_t lastFixTold = -1;
};

} // namespace TavoSimulator
} // namespace Brenmoor
