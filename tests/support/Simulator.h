#pragma once

#include "support/Program.h"

#include <json/value.h>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// tavo-simulator as a program of its own on a free port, steered as an operator steers it. A
/// request that it refuses is a std::runtime_error.
class Simulator {
public:
    /// Keeps what it needs in `folder`, and returns when the server listens. It is started with
    /// these arguments besides its own.
    explicit Simulator(const std::string& folder, const std::vector<std::string>& arguments = {});

    /// "127.0.0.1:" and the port.
    std::string Address() const;

    void QueueCommand(const std::string& id, const std::string& tag, const std::string& command,
                      bool isFile = false) const;
    void ShutDown(const std::string& id, int inSeconds = 0) const;
    /// Lets the vehicle lie still there, and tell that one fix for an hour.
    void Anchor(double latitude, double longitude) const;
    /// Waits until it ends of itself, and returns its exit code and what it wrote since it listens.
    int Wait();
    std::string Output();
    /// Lets the next replies, to this operation or any, go wrong in this way.
    void Arm(const std::string& fault, const std::string& operation = {}, unsigned count = 1) const;
    /// Returns when it holds this many polls; the test's watchdog limits the wait.
    void AwaitHeldPolls(unsigned count) const;

    /// What it holds of a payload; null when it does not know it.
    Json::Value Payload(const std::string& id) const;
    /// The payload's answers, oldest first: "tag: text", and "(more follows)" and "(failed)" where
    /// they say so.
    std::vector<std::string> Answers(const std::string& id) const;
    /// The payload's commands with their state: "tag: answered".
    std::vector<std::string> Commands(const std::string& id) const;
    /// What has been asked of it, oldest first: "/xp?op=off&id=P1".
    std::vector<std::string> Targets() const;
    /// The exact bytes of the payload's packets and of its files.
    std::vector<std::string> Packets(const std::string& id) const;
    std::vector<std::string> Files(const std::string& id) const;

private:
    Json::Value State() const;
    std::string Get(const std::string& target) const;
    void Post(const std::string& target, const Json::Value& body) const;

    const std::string folder;
    Program program;
    std::string address;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
