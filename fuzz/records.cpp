// Any text as a command, a position or an entry of a registration document.

#include "Fuzz.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <cmath>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

/// Whether the record can be read; then `check` sees it.
template <typename Read, typename Check>
bool Reads(const Read& read, const Check& check) {
    try {
        check(read());
        return true;
    } catch (const HalcyrREST::RemoteCommandFormatError&) {
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void Check(const HalcyrREST::GPSInfo& gps) {
    const bool isWhole =
        !std::isnan(gps.latitude) && !std::isnan(gps.longitude) && !std::isnan(gps.timeFix);
    Require(gps.received, "a position that was read was received");
    Require(gps.hasError || isWhole, "a position with a gap has an error");
    Require(gps.hasError || gps.errorText.empty(), "a position without an error has no text of it");
}

} // namespace

void Try(const std::string& input) {
    const bool isCommand =
        Reads([&] { return HalcyrREST::RemoteCommand(input); },
              [](const HalcyrREST::RemoteCommand& read) { RequireTag(read.tag); });
    const bool isPosition = Reads([&] { return HalcyrREST::GPSInfo(input); },
                                  [](const HalcyrREST::GPSInfo& read) { Check(read); });
    const bool isInterface = Reads(
        [&] {
            HalcyrREST::PRInterface record;
            record.InitFromJSON(input);
            return record;
        },
        [](const HalcyrREST::PRInterface&) {});
    const bool isHardware = Reads(
        [&] {
            HalcyrREST::PRHardware record;
            record.InitFromJSON(input);
            return record;
        },
        [](const HalcyrREST::PRHardware& read) {
            Require(read.hasPower || read.power == 0, "a power that was not read is 0");
        });
    Require(isCommand == isPosition && isPosition == isInterface && isInterface == isHardware,
            "what is JSON for one record is JSON for all");
    Require(!HalcyrREST::ShutdownInfo(input).requested, "a text requests no shutdown");
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
