// A deliberate fault behind a tag of more than two characters, which the fuzzer is not given but
// comes to within some thousand changes. One that does not find it finds nothing.

#include "Fuzz.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <memory>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

void Try(const std::string& input) {
    try {
        const HalcyrREST::RemoteCommand command(input);
        if (command.tag.size() > 2) {
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
