#include "commands/Commands.h"

namespace Brenmoor {
namespace Tavo {

std::vector<Command> Commands() {
    return {
        PollCommand(),       RespondCommand(),       PowerCommand(),
        OffCommand(),        DelayShutdownCommand(), ScriptCommand(),
        InstallJarCommand(), RegisterCommand(),      RegistrationCompleteCommand(),
        SendPacketCommand(), SendFileCommand(),      AgentCommand(),
    };
}

} // namespace Tavo
} // namespace Brenmoor
