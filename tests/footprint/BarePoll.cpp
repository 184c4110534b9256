#include "Bare.h"
#include "Operation.h"

#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

void Poll(const Call& call) {
    const Json::Value reply =
        BareParse(BareGet("http://" + call.server + "/xp?op=poll&id=" + call.id +
                          "&format=2&gps=true&shutdown=true&maxcommands=10&timeout=1000"));
    std::vector<std::string> commands;
    for (const Json::Value& item : reply["commands"]) {
        commands.push_back(item["command"].asString());
    }
    const double latitude = reply["gps"]["latitude"].asDouble();
    if (commands.empty() || latitude == 0.0 || !reply["shutdown"].asBool()) {
        throw std::runtime_error("the reply to the poll lacks something");
    }
}

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
