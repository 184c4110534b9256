#include "agent/TimeLimit.h"

#include <sys/wait.h>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

std::optional<siginfo_t> StatusOf(pid_t id) {
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOHANG | WNOWAIT);
    return info.si_pid == id ? std::optional(info) : std::nullopt;
}

void SignalGroup(pid_t id, int number) {
    kill(-id, number);
    if (getpgid(id) != id) {
        kill(id, number);
    }
}

TimeLimit::TimeLimit(pid_t id, std::chrono::milliseconds longest)
    : thread([this, id, longest] { Run(id, longest); }) {}

TimeLimit::~TimeLimit() {
    Tell(isOver);
    thread.join();
}

void TimeLimit::EndNow() {
    Tell(isUp);
}

bool TimeLimit::HasStruck() const {
    return hasStruck;
}

void TimeLimit::Tell(bool& what) {
    const std::lock_guard<std::mutex> lock(mutex);
    what = true;
    told.notify_one();
}

void TimeLimit::Run(pid_t id, std::chrono::milliseconds longest) {
    constexpr std::chrono::seconds grace(1);
    std::unique_lock<std::mutex> lock(mutex);
    told.wait_for(lock, longest, [this] { return isUp || isOver; });
    for (int number = SIGTERM; !isOver && !StatusOf(id); number = SIGKILL) {
        hasStruck = true;
        SignalGroup(id, number);
        told.wait_for(lock, grace, [this] { return isOver; });
    }
}

} // namespace Tavo
} // namespace Brenmoor
