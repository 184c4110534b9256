#pragma once

#include "faults/Line.h"
#include "model/Clock.h"

namespace Brenmoor {
namespace TavoSimulator {

/// Waits for so many seconds on the simulator's clock, which others may step or speed up meanwhile,
/// while the client stays. Throws Line::Ended.
void WaitOn(const Clock& clock, double seconds, Line& line);

} // namespace TavoSimulator
} // namespace Brenmoor
