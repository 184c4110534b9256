#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

namespace Brenmoor {
namespace TavoSimulator {

/// The operations by which a payload is controlled; all of them are GET requests.

/// Marks the payload as switched off, which also settles a shutdown.
Reply AnswerOff(World& world, const Request& request);

/// Keeps the state of the switch "sw", or of the main switch when none is named. Switching the
/// main switch on ends the state of being off.
Reply AnswerPower(World& world, const Request& request);

/// Turns the switch of this name, or the main one when it is empty. Throws a Refusal for one switch
/// too many.
void TurnSwitch(Payload& payload, const std::string& name, bool on);

/// Answers a canned text; nothing is ever run.
Reply AnswerScript(World& world, const Request& request);

/// Marks the registration as complete.
Reply AnswerMetaDone(World& world, const Request& request);

/// Moves a planned shutdown by "delay" seconds: from its time, or from now if that has passed.
Reply AnswerOffDelay(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
