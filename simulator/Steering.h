#pragma once

#include "Exchange.h"
#include "World.h"

namespace Brenmoor {
namespace TavoSimulator {

/// True for the targets under "/sim/", by which a person or a test steers the simulator.
bool IsSteering(const Request& request);

/// Answers such a request. Throws a Refusal for an unknown one or one with bad content.
Reply AnswerSteering(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
