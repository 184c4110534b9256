#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Whether a request is not a payload's but of someone who steers or looks: everything under
/// "/sim/", and the page.
bool IsControl(const std::string& target);

/// Whether a POST to "/sim/v1/" and this name orders something.
bool TakesOrders(const std::string& name);

/// Throws a Refusal for a request of a payload that no payload sent: a browser tells of itself that
/// it did so for another site's page.
void RequireNoOtherSite(const Request& request);

/// Answers such a request. Throws a Refusal for one that does not fit, and for one that another
/// site's page had a browser send.
Reply AnswerControl(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
