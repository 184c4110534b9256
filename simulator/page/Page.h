#pragma once

#include "wire/Exchange.h"

#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Whether a target is one of the page's: "/" or anything under "/page/".
bool IsPage(const std::string& target);

/// The page's file that the request is for, or "304 Not Modified" for a browser that has it.
/// Throws a Refusal when there is none.
Reply PageReply(const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
