#pragma once

#include "Changes.h"
#include "Clock.h"
#include "FileStore.h"
#include "PayloadRegistry.h"
#include "Replay.h"
#include "ScriptBook.h"
#include "ScriptRun.h"
#include "Traffic.h"
#include "Vehicle.h"
#include "faults/FaultPlan.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// What a simulator is started with.
struct Settings {
    std::string dataFolder;
    double clockSpeed = 1;
    /// Unix time at the start; the present one when absent.
    std::optional<double> startUnixSeconds;
    std::uint64_t seed = 1;
    /// When a command that was delivered and got no answer is delivered again; 0 for never.
    double redeliverSeconds = 0;
    std::size_t mostPayloads = 1000;
    std::uintmax_t mostUploadBytes = std::uintmax_t{2} * 1024 * 1024 * 1024;
    /// Whether the page is served.
    bool page = true;
    /// How long a client may take for a request up to its content, and lie there before it.
    double longestHeadSeconds = 10;
    double longestIdleSeconds = 60;
    /// Where scripts are that may be run; none when empty.
    std::string scriptFolder;
    ScriptLimits scriptLimits;
    /// When set, every reply comes from here and nothing else is carried out.
    std::shared_ptr<Replay> replay;
    /// How long the pauses of faults are, for tests in a hurry.
    double pauseScale = 1;
};

/// Everything that a simulator knows, shared by all the threads that serve requests.
struct World {
    explicit World(const Settings& theSettings)
        : settings(theSettings), clock(settings.clockSpeed, settings.startUnixSeconds),
          vehicle(settings.seed),
          payloads(clock, vehicle, changes, settings.mostPayloads, settings.redeliverSeconds),
          files(settings.dataFolder), faults(changes), traffic(changes) {}

    const Settings settings;
    Changes changes;
    Clock clock;
    Vehicle vehicle;
    PayloadRegistry payloads;
    const FileStore files;
    ScriptBook scripts;
    FaultPlan faults;
    Traffic traffic;
    /// How many are sent all changes as they happen.
    std::atomic<int> listeners{0};
};

} // namespace TavoSimulator
} // namespace Brenmoor
