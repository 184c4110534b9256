#pragma once

#include <string>

namespace Brenmoor {
namespace Tavo {

/// Tells the service manager a state, as "READY=1" or "WATCHDOG=1", if it asked for that by
/// NOTIFY_SOCKET in the environment.
void NotifyManager(const std::string& state);

} // namespace Tavo
} // namespace Brenmoor
