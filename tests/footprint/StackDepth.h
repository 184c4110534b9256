#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

struct Depth {
    std::size_t bytes;
    std::string error; ///< what the action threw; empty when it returned
};

/// Runs the action on a thread whose stack was painted before, and finds how far below the
/// thread's first function the paint is gone.
Depth MeasureStack(const std::function<void()>& action);

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
