#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

namespace Brenmoor {
namespace TavoSimulator {

/// The requests that change something. Each takes a JSON object and answers with one.

/// Leaves a command for a payload; a tag is made up if none is given.
Reply QueueCommand(World& world, const Request& request);

/// Plans a payload's shutdown, or cancels it.
Reply PlanShutdown(World& world, const Request& request);

Reply SetSwitch(World& world, const Request& request);
Reply ForgetPayload(World& world, const Request& request);
Reply OrderVehicle(World& world, const Request& request);
Reply SetClock(World& world, const Request& request);

/// Sets what is answered for scripts that match a pattern.
Reply AddScript(World& world, const Request& request);

Reply ArmFault(World& world, const Request& request);
Reply DisarmFaults(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
