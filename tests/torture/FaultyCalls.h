#pragma once

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

/// What the functions of FaultyCalls.cpp count, and what they are told; see Faults.h. A plain
/// structure, since it is in use before the program's first constructor.
struct FaultyCalls {
    bool areCounted = false;
    bool isEachLaterFailed = false;
    long failedNumber = -1;
    long calls = 0;
    long failedUnlinks = 0;
    long liveBlocks = 0;
    const char* firstFailed = nullptr;
    const char* names[64] = {};
    long callsByName[64] = {};
};
extern FaultyCalls faultyCalls;

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor
