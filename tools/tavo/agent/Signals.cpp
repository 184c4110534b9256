#include "agent/Signals.h"

#include "core/Failure.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

namespace {

// What a signal's action can reach.
std::atomic<bool> stopRequested{false};
std::atomic<pid_t> runningGroup{0};
std::array<int, 2> notices{-1, -1};
unsigned longestStop = 0;

constexpr std::array<int, 4> signalNumbers{SIGTERM, SIGINT, SIGCHLD, SIGALRM};
std::array<struct sigaction, 4> former{};

extern "C" void TakeNote(int number) {
    const int error = errno;
    if (number == SIGALRM) {
        if (runningGroup != 0) {
            kill(-runningGroup, SIGKILL);
        }
        _exit(0); // the journal is good at any moment
    }
    if (number != SIGCHLD && !stopRequested.exchange(true)) {
        alarm(longestStop);
    }
    // A full pipe has notices enough.
    [[maybe_unused]] const ssize_t written = write(notices[1], "", 1);
    errno = error;
}

void EmptyPipe() {
    std::array<char, 64> bytes{};
    while (read(notices[0], bytes.data(), bytes.size()) > 0) {
    }
}

} // namespace

Signals::Signals(std::chrono::seconds theLongestStop) {
    if (pipe2(notices.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw FileError("make", "a pipe", errno);
    }
    stopRequested = false;
    longestStop = static_cast<unsigned>(theLongestStop.count());
    struct sigaction action {};
    action.sa_handler = TakeNote;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < signalNumbers.size(); ++i) {
        sigaction(signalNumbers[i], &action, &former[i]);
    }
}

Signals::~Signals() {
    alarm(0);
    for (std::size_t i = 0; i < signalNumbers.size(); ++i) {
        sigaction(signalNumbers[i], &former[i], nullptr);
    }
    close(notices[0]);
    close(notices[1]);
}

bool Signals::StopRequested() const {
    return stopRequested;
}

void Signals::Tell(pid_t group) const {
    runningGroup = group;
}

void Signals::Wait(int descriptor, std::chrono::milliseconds longest) const {
    std::array<pollfd, 2> wanted{{{notices[0], POLLIN, 0}, {descriptor, POLLIN, 0}}};
    constexpr std::chrono::milliseconds mostAtOnce(60000);
    const auto wait = std::clamp(longest, std::chrono::milliseconds(0), mostAtOnce);
    poll(wanted.data(), descriptor < 0 ? 1 : 2, static_cast<int>(wait.count()));
    EmptyPipe();
}

void Signals::Pause(std::chrono::milliseconds duration) const {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + duration;
    while (!StopRequested() && Clock::now() < end) {
        Wait(-1, std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()));
    }
}

} // namespace Tavo
} // namespace Brenmoor
