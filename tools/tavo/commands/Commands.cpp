#include "commands/Commands.h"

namespace Brenmoor {
namespace Tavo {

std::vector<Command> Commands() {
    return {
        PowerCommand(),
        OffCommand(),
        ScriptCommand(),
    };
}

} // namespace Tavo
} // namespace Brenmoor
