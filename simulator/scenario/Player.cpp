#include "Player.h"

#include <algorithm>
#include <cmath>

namespace Brenmoor {
namespace TavoSimulator {

Player::Player(const Scenario& theScenario, World& theWorld)
    : scenario(theScenario), world(theWorld) {
    world.traffic.WhenEnded([this](const TrafficEntry& entry) {
        const std::lock_guard<std::mutex> lock(mutex);
        for (const NamedExpectation& named : scenario.expectations) {
            named.expectation->Note(entry);
        }
    });
}

void Player::PlayDue() {
    // The clock is read each time, since a step may put it forward.
    while (played < scenario.steps.size() && scenario.steps[played].at <= world.clock.Seconds()) {
        const Step& step = scenario.steps[played++];
        try {
            PlayStep(world, step);
        } catch (const Refusal& refusal) {
            refusals.push_back("refused: " + step.place + ": " + refusal.what());
        }
    }
}

bool Player::Over() {
    if (played < scenario.steps.size()) {
        return false;
    }
    if (scenario.endAt && world.clock.Seconds() >= *scenario.endAt) {
        return true;
    }
    const std::uint64_t changes = world.changes.Await(0, std::chrono::milliseconds(0));
    if (!scenario.endWhenMet || changes == changesSeen) {
        return false;
    }
    changesSeen = changes;
    return AllMet();
}

bool Player::AllMet() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::all_of(scenario.expectations.begin(), scenario.expectations.end(),
                       [this](const NamedExpectation& named) {
                           return named.expectation->Missing(world).empty();
                       });
}

std::chrono::milliseconds Player::Pause(std::chrono::milliseconds longest) const {
    const double now = world.clock.Seconds();
    double next = now + 3600;
    if (played < scenario.steps.size()) {
        next = scenario.steps[played].at;
    } else if (scenario.endAt) {
        next = *scenario.endAt;
    }
    const double seconds = world.clock.RealTime(next - now).count();
    const std::chrono::milliseconds left(static_cast<std::int64_t>(std::ceil(seconds * 1000)));
    return std::min(left, longest);
}

Player::Report Player::Conclude() const {
    const std::lock_guard<std::mutex> lock(mutex);
    Report report;
    report.lines = refusals;
    std::size_t met = 0;
    for (const NamedExpectation& named : scenario.expectations) {
        const std::string missing = named.expectation->Missing(world);
        if (missing.empty()) {
            ++met;
        }
        report.lines.push_back(missing.empty() ? "met: " + named.name
                                               : "not met: " + named.name + ": " + missing);
    }
    const std::size_t all = scenario.expectations.size();
    report.met = met == all && refusals.empty();
    std::string sum =
        "scenario: " + std::to_string(met) + " of " + std::to_string(all) + " expectations met";
    if (!refusals.empty()) {
        sum += ", steps refused: " + std::to_string(refusals.size());
    }
    report.lines.push_back(sum);
    return report;
}

} // namespace TavoSimulator
} // namespace Brenmoor
