#include "commands/Position.h"

#include <cmath>

namespace Brenmoor {
namespace Tavo {

namespace {

Json::Value NumberOrNull(double value) {
    return std::isfinite(value) ? Json::Value(value) : Json::Value();
}

} // namespace

Json::Value JsonOf(const TavoRemotingLib::HalcyrREST::GPSInfo& position) {
    if (!position.received) {
        return Json::Value();
    }
    Json::Value value;
    value["error"] = position.hasError ? Json::Value(position.errorText) : Json::Value();
    value["latitude"] = NumberOrNull(position.latitude);
    value["longitude"] = NumberOrNull(position.longitude);
    value["timeFix"] = NumberOrNull(position.timeFix);
    return value;
}

} // namespace Tavo
} // namespace Brenmoor
