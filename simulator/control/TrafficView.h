#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

#include <json/value.h>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// An exchange without its bytes.
Json::Value SummaryJson(const Clock& clock, const TrafficEntry& entry);

/// An exchange with its bytes, as a line of a journal without its end.
std::string JournalLine(const Clock& clock, const TrafficEntry& entry);

/// The newest exchanges behind "after", at most "most" of them.
Reply ShowTraffic(World& world, const Request& request);
Reply ClearTraffic(World& world, const Request& request);

/// The bytes of one direction of one exchange, ".../NUMBER/request" or ".../NUMBER/reply".
Reply ShowBytes(World& world, const Request& request);

/// All exchanges with their bytes, one JSON object a line.
Reply ShowJournal(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
