#include "Clock.h"

namespace Brenmoor {
namespace TavoSimulator {

double Clock::Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Clock::UnixSeconds(double seconds) const {
    return std::chrono::duration<double>(unixStart.time_since_epoch()).count() + seconds;
}

} // namespace TavoSimulator
} // namespace Brenmoor
