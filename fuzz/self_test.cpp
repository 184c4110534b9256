// A deliberate fault behind a text that no seed has. A fuzzer that does not find it finds nothing.

#include "Fuzz.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <memory>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

void Try(const std::string& input) {
    try {
        const HalcyrREST::RemoteCommand command(input);
        if (command.isFile) {
            const std::unique_ptr<volatile char[]> bytes(new volatile char[8]);
            bytes[command.tag.size() + 8] = 'x';
            Require(false, "the deliberate fault");
        }
    } catch (const std::exception&) {
        return;
    }
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
