#pragma once

#include "wire/Exchange.h"

#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Whether a target is a file of the page.
bool IsPage(const std::string& target);

/// The file. Throws a Refusal when there is none.
Reply PageReply(const std::string& path);

} // namespace TavoSimulator
} // namespace Brenmoor
