#pragma once

#include "Expectation.h"
#include "wire/Json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// A request to the control interface at a time.
struct Step {
    /// On the simulator's clock.
    double at = 0;
    /// The place in the file, as in "steps[2].commands".
    std::string place;
    std::string method;
    std::string target;
    std::string body;
};

struct NamedExpectation {
    /// What a report calls it.
    std::string name;
    ExpectationPtr expectation;
};

/// What is to happen, and what is to have happened in the end.
struct Scenario {
    std::optional<double> speed;
    std::optional<double> startUnixSeconds;
    std::optional<std::uint64_t> seed;
    /// In the order of their times.
    std::vector<Step> steps;
    /// When it ends, on the simulator's clock.
    std::optional<double> endAt;
    /// Whether it ends once all steps are played and all expectations are met.
    bool endWhenMet = false;
    std::vector<NamedExpectation> expectations;
};

/// Reads a scenario, whose steps are rehearsed. Throws a FileMistake that begins with the
/// member's place.
Scenario ParseScenario(const std::string& text);

/// Sends a step's request to the control interface. Throws a Refusal.
void PlayStep(World& world, const Step& step);

} // namespace TavoSimulator
} // namespace Brenmoor
