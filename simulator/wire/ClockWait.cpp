#include "ClockWait.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

void WaitOn(const Clock& clock, double seconds, Line& line) {
    // How often to look at the clock.
    constexpr std::chrono::duration<double> glance(0.02);
    const double end = clock.Seconds() + seconds;
    while (clock.Seconds() < end) {
        line.Pause(std::chrono::ceil<std::chrono::milliseconds>(
            std::min(clock.RealTime(end - clock.Seconds()), glance)));
    }
}

} // namespace TavoSimulator
} // namespace Brenmoor
