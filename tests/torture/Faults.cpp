#include "Faults.h"

#include "FaultyCalls.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

FaultyCalls faultyCalls;

Faults::Faults(long number, bool andLater) {
    const long liveBlocks = faultyCalls.liveBlocks;
    faultyCalls = FaultyCalls();
    faultyCalls.liveBlocks = liveBlocks;
    faultyCalls.failedNumber = number;
    faultyCalls.isEachLaterFailed = andLater;
    faultyCalls.areCounted = true;
}

Faults::~Faults() {
    faultyCalls.areCounted = false;
}

Counted LastCounted() {
    Counted counted;
    counted.calls = faultyCalls.calls;
    counted.failedUnlinks = faultyCalls.failedUnlinks;
    counted.firstFailed = faultyCalls.firstFailed != nullptr ? faultyCalls.firstFailed : "";
    for (int i = 0; faultyCalls.names[i] != nullptr; ++i) {
        counted.callsByName[faultyCalls.names[i]] = faultyCalls.callsByName[i];
    }
    return counted;
}

long LiveBlocks() {
    return faultyCalls.liveBlocks;
}

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor
