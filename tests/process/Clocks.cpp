#include "Clocks.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <poll.h>
#include <sys/time.h>

namespace {

constexpr long long second = 1000000000;

std::atomic<int> speed{1};
/// Where the fast clocks began, and from where they go on afterwards.
std::atomic<long long> begin{0};
std::atomic<long long> gained{0};
std::atomic<long long> setBack{0};

template <typename Function>
Function* Real(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

long long RealNow(clockid_t clock) {
    static const auto real = Real(&clock_gettime, "clock_gettime");
    timespec now = {};
    real(clock, &now);
    return now.tv_sec * second + now.tv_nsec;
}

/// What is to be added to a clock that measures time.
long long Gained() {
    return gained + (speed - 1) * (RealNow(CLOCK_MONOTONIC) - begin);
}

long long Now(clockid_t clock) {
    const long long now = RealNow(clock);
    if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) {
        return now + Gained() - setBack;
    }
    return clock == CLOCK_PROCESS_CPUTIME_ID || clock == CLOCK_THREAD_CPUTIME_ID ? now
                                                                                 : now + Gained();
}

} // namespace

extern "C" {

#define EXPORTED __attribute__((visibility("default")))

EXPORTED int clock_gettime(clockid_t clock, timespec* now) noexcept {
    const long long nanoseconds = Now(clock);
    now->tv_sec = static_cast<time_t>(nanoseconds / second);
    now->tv_nsec = static_cast<long>(nanoseconds % second);
    return 0;
}

EXPORTED int gettimeofday(timeval* now, void*) noexcept {
    const long long nanoseconds = Now(CLOCK_REALTIME);
    now->tv_sec = static_cast<time_t>(nanoseconds / second);
    now->tv_usec = static_cast<suseconds_t>(nanoseconds % second / 1000);
    return 0;
}

EXPORTED time_t time(time_t* now) noexcept {
    const auto seconds = static_cast<time_t>(Now(CLOCK_REALTIME) / second);
    if (now != nullptr) {
        *now = seconds;
    }
    return seconds;
}

EXPORTED int poll(pollfd* polled, nfds_t count, int timeout) {
    static const auto real = Real(&poll, "poll");
    return real(polled, count, timeout > 0 ? (timeout + speed - 1) / speed : timeout);
}

} // extern "C"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

Clocks::Clocks(int fast) {
    begin = RealNow(CLOCK_MONOTONIC);
    speed = fast;
}

Clocks::~Clocks() {
    gained = Gained();
    speed = 1;
}

void Clocks::SetBackAnHour() {
    setBack += 3600 * second;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
