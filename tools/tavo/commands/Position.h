#pragma once

#include <TavoRemotingLib/HalcyrREST.h>

#include <json/value.h>

namespace Brenmoor {
namespace Tavo {

/// A position for programs; null when none was received.
Json::Value JsonOf(const TavoRemotingLib::HalcyrREST::GPSInfo& position);

} // namespace Tavo
} // namespace Brenmoor
