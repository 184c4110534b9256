#pragma once

#include "core/Description.h"

#include <vector>

namespace Brenmoor {
namespace Tavo {

// One function for each subcommand, in a file for each family.
Command PollCommand();
Command RespondCommand();
Command PowerCommand();
Command OffCommand();
Command DelayShutdownCommand();
Command ScriptCommand();
Command InstallJarCommand();
Command RegisterCommand();
Command RegistrationCompleteCommand();
Command SendPacketCommand();
Command SendFileCommand();
Command AgentCommand();

/// All of them, in the order in which help tells them.
std::vector<Command> Commands();

} // namespace Tavo
} // namespace Brenmoor
