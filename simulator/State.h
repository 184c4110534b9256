#pragma once

#include "Json.h"
#include "World.h"

namespace Brenmoor {
namespace TavoSimulator {

/// The vehicle and all payloads as they are at this moment.
JsonObject StateJson(const World& world);

/// The payloads' exchanges in order.
JsonObject JournalJson(const World& world);

} // namespace TavoSimulator
} // namespace Brenmoor
