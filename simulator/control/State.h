#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

#include <json/value.h>

namespace Brenmoor {
namespace TavoSimulator {

/// What there is to see, as JSON.

Json::Value ClockJson(const World& world);
Json::Value VehicleJson(const World& world);
Json::Value FaultJson(const ArmedFault& armed);
/// Everything but the traffic. Long texts are cut; their whole is fetched on its own.
Json::Value StateJson(const World& world);

Reply ShowState(World& world, const Request& request);
/// The catalogue of faults and those that are armed.
Reply ShowFaults(World& world, const Request& request);
/// State and traffic as they change, as server-sent events.
Reply StreamEvents(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
