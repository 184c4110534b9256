#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <string>
#include <unordered_map>

namespace Brenmoor {
namespace TavoSimulator {

/// Accepts connections, and keeps each until it has sent something: a connection that only lies
/// there costs a descriptor, but no thread. Used by one thread.
class WaitingRoom {
public:
    /// Keeps at most so many connections and each for so long; the one that has waited longest goes
    /// first. While `busy` says so, whoever sends something is refused with "503 Service
    /// Unavailable". The listening socket, which belongs to the caller, must not block.
    WaitingRoom(int listening, std::size_t most, std::chrono::milliseconds longest,
                std::function<bool()> busy);
    WaitingRoom(const WaitingRoom&) = delete;
    WaitingRoom& operator=(const WaitingRoom&) = delete;
    /// Closes all that wait.
    ~WaitingRoom();

    /// Whether there is, after at most `timeout`, a connection to take.
    bool Await(std::chrono::milliseconds timeout);

    /// The descriptor of one that has sent something; it is the caller's from now on. -1 for none.
    int Take();

private:
    using Real = std::chrono::steady_clock;

    struct Waiting {
        int descriptor;
        Real::time_point since;
    };

    void AcceptAll();
    void MakeRoom();
    void Admit(int descriptor);
    void Hear(int descriptor);
    int Leave(std::list<Waiting>::iterator one);
    void DropOldest();
    void DropExpired();

    const int listening;
    const std::size_t most;
    const std::chrono::milliseconds longest;
    const std::function<bool()> busy;
    const int epoll;
    /// The one that has waited longest is the first.
    std::list<Waiting> waiting;
    std::unordered_map<int, std::list<Waiting>::iterator> places;
    std::deque<int> heard;
};

} // namespace TavoSimulator
} // namespace Brenmoor
