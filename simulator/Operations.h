#pragma once

#include "Exchange.h"
#include "World.h"

namespace Brenmoor {
namespace TavoSimulator {

/// Answers a request to "/xp", which names one of the server's operations in its query.
/// Throws a Refusal for whatever a healthy server would not take.
Reply AnswerOperation(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
