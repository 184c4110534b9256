#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

namespace Brenmoor {
namespace TavoSimulator {

/// What payloads handed over, whole: a kept file by its name, a packet and an answer by their
/// numbers, a registration by its payload. Each throws a Refusal when there is none.

Reply FetchFile(World& world, const Request& request);
Reply FetchPacket(World& world, const Request& request);
Reply FetchAnswer(World& world, const Request& request);
Reply ShowRegistration(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
