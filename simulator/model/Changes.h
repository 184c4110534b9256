#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace Brenmoor {
namespace TavoSimulator {

/// Counts the changes of a simulator, so that those who show it can wait for the next one.
/// Every operation may be called from any thread.
class Changes {
public:
    void Note();

    /// Waits until there were more than `seen` changes, but not longer than `longest`.
    /// Returns their number.
    std::uint64_t Await(std::uint64_t seen, std::chrono::milliseconds longest);

    /// Waits until all waiting is ended, but not longer than `longest`.
    void AwaitClose(std::chrono::milliseconds longest);

    /// Ends all waiting, now and later.
    void Close();
    bool Closed() const;

private:
    mutable std::mutex mutex;
    std::condition_variable noted;
    std::uint64_t count = 1;
    bool closed = false;
};

} // namespace TavoSimulator
} // namespace Brenmoor
