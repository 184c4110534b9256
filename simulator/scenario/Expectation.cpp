#include "Expectation.h"

#include <algorithm>
#include <iterator>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

struct Kind {
    const char* name;
    ExpectationMaker maker;
};

constexpr Kind kinds[] = {
    {"command", ExpectCommand},           {"file", ExpectFile},       {"packet", ExpectPacket},
    {"registration", ExpectRegistration}, {"payload", ExpectPayload}, {"switch", ExpectSwitch},
    {"exchanges", ExpectExchanges},       {"noFlags", ExpectNoFlags}, {"fault", ExpectFault},
};

} // namespace

ExpectationMaker FindExpectationMaker(const std::string& name) {
    const auto* const found = std::find_if(std::begin(kinds), std::end(kinds),
                                           [&](const Kind& kind) { return kind.name == name; });
    return found == std::end(kinds) ? nullptr : found->maker;
}

} // namespace TavoSimulator
} // namespace Brenmoor
