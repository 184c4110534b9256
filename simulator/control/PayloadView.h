#pragma once

#include "model/World.h"

#include <json/value.h>

namespace Brenmoor {
namespace TavoSimulator {

/// All payloads, each with all that is known of it. Texts are cut after 4,000 bytes.
Json::Value PayloadsJson(const World& world);

} // namespace TavoSimulator
} // namespace Brenmoor
