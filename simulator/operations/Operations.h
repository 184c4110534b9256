#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

namespace Brenmoor {
namespace TavoSimulator {

/// Answers a request to "/xp", which names one of the server's operations in its query.
/// Throws a Refusal for whatever a healthy server would not take.
Reply AnswerOperation(World& world, const Request& request);

/// Whether there is an operation of this name.
bool IsOperation(const std::string& name);

} // namespace TavoSimulator
} // namespace Brenmoor
