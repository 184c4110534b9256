#pragma once

#include "Subjects.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

/// What came of one run of a subject. Travels from process to process as it is.
struct Trial {
    long calls;         ///< that can fail
    char byName[512];   ///< their names and numbers, as text
    char failed[32];    ///< the first call that was failed; empty when the run ended before it
    char exception[64]; ///< the type that was thrown; empty for success
    char wrong[256];    ///< what must not be; empty when all is well
    long blocks;        ///< of memory that the run and the two good ones behind it have kept
};

/// Which calls of a run are failed; see Faults.
struct Failure {
    long number;
    bool andLater;
};

/// Runs the subject in a process of its own, so many times with the failure and then twice without.
/// Afterwards no descriptor and no temporary file may be left.
Trial Try(const Subject& subject, const Surroundings& with, const Failure& failure, int times = 1);

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor
