#pragma once

#include "Changes.h"
#include "wire/Recording.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// One exchange of a payload with the server. Its bytes may still be passing.
struct TrafficEntry {
    std::uint64_t number = 0;
    /// When it began, on the simulator's clock.
    double seconds = 0;
    std::string peer;
    std::string method;
    std::string target;
    std::string operation;
    std::vector<std::string> ids;
    bool open = true;
    /// 0 where there is none, as in a fault that sends none.
    int status = 0;
    std::string reason;
    /// The real time it took.
    double durationSeconds = 0;
    /// The name of the fault in its reply; empty for none.
    std::string fault;
    /// What was malformed in its request.
    std::vector<std::string> flags;
    std::shared_ptr<const Recording> recording;
};

/// An entry as one readable line, without a line end. `time` is its begin as a text.
std::string LineText(const TrafficEntry& entry, const std::string& time);

/// The newest exchanges in the order of their begins. Every operation may be called from any
/// thread.
class Traffic {
public:
    /// Keeps at most so many entries whose bytes take at most so much memory; older ones are
    /// dropped, but for those that are still open.
    explicit Traffic(Changes& changes, std::size_t mostEntries = 5000,
                     std::size_t mostBytes = std::size_t{64} * 1024 * 1024);

    /// Has `watcher` called with every exchange that has ended, on the thread that ended it. For
    /// use before the first exchange; what the watcher needs must outlive the last one.
    void WhenEnded(std::function<void(const TrafficEntry&)> watcher);

    /// Numbers the entry, from 1, and adds it. Returns the number.
    std::uint64_t Begin(TrafficEntry entry);

    /// Lets `change` work on an entry, if it is still there.
    void Change(std::uint64_t number, const std::function<void(TrafficEntry&)>& change);

    /// The entries that began, or were changed, since `seen` was the count of changes, oldest
    /// first, and that count now. Starts from all of them with 0.
    std::vector<TrafficEntry> ChangedSince(std::uint64_t& seen) const;

    std::vector<TrafficEntry> Entries() const;
    std::optional<TrafficEntry> Find(std::uint64_t number) const;

    /// Drops all entries but those that are open.
    void Clear();

private:
    struct Item {
        TrafficEntry entry;
        std::uint64_t changed;
        /// What it counted for when it was last changed.
        std::size_t bytes;
    };

    /// Drops entries that are not open, the oldest first, while there is a reason for more.
    template <typename Predicate>
    void Drop(const Predicate& more);
    void Shrink();
    void Tell(const std::optional<TrafficEntry>& ended) const;

    Changes& changes;
    const std::size_t mostEntries;
    const std::size_t mostBytes;
    std::vector<std::function<void(const TrafficEntry&)>> watchers;
    mutable std::mutex mutex;
    std::uint64_t added = 0;
    std::uint64_t changeCount = 0;
    std::deque<Item> items;
    std::size_t bytes = 0;
};

} // namespace TavoSimulator
} // namespace Brenmoor
