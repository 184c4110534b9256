#pragma once

#include "model/World.h"

#include <json/value.h>
#include <memory>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Something that is to have happened when a scenario ends. Used by one thread at a time.
class Expectation {
public:
    Expectation() = default;
    Expectation(const Expectation&) = delete;
    Expectation& operator=(const Expectation&) = delete;
    virtual ~Expectation() = default;

    /// Takes note of an exchange that has ended.
    virtual void Note(const TrafficEntry&) {}

    /// What is missing, in one line; empty when the expectation is met.
    virtual std::string Missing(const World& world) const = 0;
};

using ExpectationPtr = std::shared_ptr<Expectation>;

/// Makes an expectation from its description. Throws a Refusal for a mistake in it.
using ExpectationMaker = ExpectationPtr (*)(const Json::Value& description);

/// What makes expectations of this kind, or null when there is no such kind.
ExpectationMaker FindExpectationMaker(const std::string& kind);

/// Those about what a payload did or has.
ExpectationPtr ExpectCommand(const Json::Value& description);
ExpectationPtr ExpectFile(const Json::Value& description);
ExpectationPtr ExpectPacket(const Json::Value& description);
ExpectationPtr ExpectRegistration(const Json::Value& description);
ExpectationPtr ExpectPayload(const Json::Value& description);
ExpectationPtr ExpectSwitch(const Json::Value& description);

/// Those about the exchanges.
ExpectationPtr ExpectExchanges(const Json::Value& description);
ExpectationPtr ExpectNoFlags(const Json::Value& description);
ExpectationPtr ExpectFault(const Json::Value& description);

} // namespace TavoSimulator
} // namespace Brenmoor
