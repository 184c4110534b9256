#pragma once

#include "Clock.h"
#include "FileStore.h"
#include "Journal.h"
#include "PayloadRegistry.h"
#include "Vehicle.h"

#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Everything that a simulator knows, shared by all the threads that serve requests.
struct World {
    explicit World(const std::string& dataFolder) : payloads(clock, vehicle), files(dataFolder) {}

    const Clock clock{};
    const Vehicle vehicle{};
    PayloadRegistry payloads;
    const FileStore files;
    Journal journal;
};

} // namespace TavoSimulator
} // namespace Brenmoor
