#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <optional>
#include <sys/types.h>
#include <thread>

namespace Brenmoor {
namespace Tavo {

/// How a child ended, once it has. It stays a zombie, which keeps its number from being used again.
std::optional<siginfo_t> StatusOf(pid_t id);

/// Signals the process group that a child began with, and the child where it left that.
void SignalGroup(pid_t id, int number);

/// Ends a child when its time is up, whatever its owner waits for: its group gets SIGTERM and, each
/// second from then on, SIGKILL. The child must not be reaped before this is destroyed.
class TimeLimit {
public:
    TimeLimit(pid_t id, std::chrono::milliseconds longest);
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;
    ~TimeLimit();

    /// As if its time were up.
    void EndNow();

    /// Whether the child was told to end while it ran.
    bool HasStruck() const;

private:
    void Run(pid_t id, std::chrono::milliseconds longest);
    void Tell(bool& what);

    std::mutex mutex;
    std::condition_variable told;
    bool isUp = false;
    bool isOver = false;
    std::atomic<bool> hasStruck{false};
    std::thread thread;
};

} // namespace Tavo
} // namespace Brenmoor
