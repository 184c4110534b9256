#pragma once

#include <csignal>
#include <sys/time.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// While it lives, SIGALRM has a handler that only counts.
class Alarms {
public:
    /// `flags` as for sigaction(): SA_RESTART, or 0, which lets a signal interrupt what waits.
    explicit Alarms(int flags) {
        Count() = 0;
        struct sigaction action = {};
        action.sa_handler = [](int) {
            ++Count();
        };
        action.sa_flags = flags;
        sigaction(SIGALRM, &action, &oldAction);
    }
    Alarms(const Alarms&) = delete;
    Alarms& operator=(const Alarms&) = delete;
    ~Alarms() {
        const itimerval none = {};
        setitimer(ITIMER_REAL, &none, nullptr);
        std::signal(SIGALRM, SIG_IGN); // one that is still pending is forgotten
        sigaction(SIGALRM, &oldAction, nullptr);
    }

    /// Has the signal sent again and again.
    static void Start(suseconds_t microseconds) {
        const itimerval every = {{0, microseconds}, {0, microseconds}};
        setitimer(ITIMER_REAL, &every, nullptr);
    }

    /// The number of signals so far.
    static volatile std::sig_atomic_t& Count() {
        static volatile std::sig_atomic_t count = 0;
        return count;
    }

private:
    struct sigaction oldAction = {};
};

/// Keeps SIGALRM away from this thread, and from the threads it starts, while it lives.
class WithoutAlarms {
public:
    WithoutAlarms() {
        sigset_t alarms;
        sigemptyset(&alarms);
        sigaddset(&alarms, SIGALRM);
        pthread_sigmask(SIG_BLOCK, &alarms, &before);
    }
    WithoutAlarms(const WithoutAlarms&) = delete;
    WithoutAlarms& operator=(const WithoutAlarms&) = delete;
    ~WithoutAlarms() {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }

private:
    sigset_t before = {};
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
