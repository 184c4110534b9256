#pragma once

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Lets time pass for the whole process as a test wants it. The functions by which the library,
/// those that it calls, and the tests' server ask for the time and wait are defined in the program
/// (Clocks.cpp), where every shared object finds them before the C library's own.
class Clocks {
public:
    /// Every clock runs that many times as fast while it lives, and poll() waits as much less.
    explicit Clocks(int speed);
    Clocks(const Clocks&) = delete;
    Clocks& operator=(const Clocks&) = delete;
    ~Clocks();

    /// Sets the wall clock, but not those that measure time, back by an hour.
    static void SetBackAnHour();
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
