#pragma once

#include "Scenario.h"

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// Plays a scenario in a world. One thread plays; exchanges may end on any.
class Player {
public:
    /// To be made before the first exchange. Both must outlive this, and this the last exchange.
    Player(const Scenario& scenario, World& world);
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Plays the steps whose time has come. One that is refused spoils the scenario.
    void PlayDue();

    /// Whether the scenario has come to its end.
    bool Over();

    /// The real time until there is something to do, at most `longest`.
    std::chrono::milliseconds Pause(std::chrono::milliseconds longest) const;

    /// What became of the scenario so far.
    struct Report {
        std::vector<std::string> lines;
        bool met = false;
    };
    Report Conclude() const;

private:
    bool AllMet() const;

    const Scenario& scenario;
    World& world;
    std::size_t played = 0;
    std::vector<std::string> refusals;
    /// The count of the world's changes when the expectations were last looked at.
    std::uint64_t changesSeen = 0;
    /// Held while an expectation is used.
    mutable std::mutex mutex;
};

} // namespace TavoSimulator
} // namespace Brenmoor
