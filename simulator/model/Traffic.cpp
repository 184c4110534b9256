#include "Traffic.h"
#include "wire/EscapedText.h"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::size_t KeptBytes(const TrafficEntry& entry) {
    constexpr std::uint64_t most = Recording::most;
    std::size_t kept = entry.target.size() + entry.method.size() + entry.operation.size();
    for (const std::string& id : entry.ids) {
        kept += id.size();
    }
    for (const std::string& flag : entry.flags) {
        kept += flag.size();
    }
    return entry.recording == nullptr
               ? kept
               : kept + static_cast<std::size_t>(std::min(entry.recording->ReceivedCount(), most) +
                                                 std::min(entry.recording->SentCount(), most));
}

} // namespace

std::string LineText(const TrafficEntry& entry, const std::string& time) {
    std::ostringstream line;
    line << time << ' ' << entry.peer << ' ' << Escape(entry.method) << ' ' << Escape(entry.target)
         << " (" << entry.recording->ReceivedCount() << " bytes) -> " << entry.status << ' '
         << entry.reason << " (" << entry.recording->SentCount() << " bytes) after " << std::fixed
         << std::setprecision(3) << entry.durationSeconds << " s";
    if (!entry.fault.empty()) {
        line << " fault: " << entry.fault;
    }
    for (const std::string& flag : entry.flags) {
        line << " flag: " << flag;
    }
    return line.str();
}

Traffic::Traffic(Changes& theChanges, std::size_t theMostEntries, std::size_t theMostBytes)
    : changes(theChanges), mostEntries(theMostEntries), mostBytes(theMostBytes) {}

template <typename Predicate>
void Traffic::Drop(const Predicate& more) {
    for (auto item = items.begin(); item != items.end() && more();) {
        if (item->entry.open) {
            ++item;
            continue;
        }
        bytes -= item->bytes;
        item = items.erase(item);
    }
}

void Traffic::WhenEnded(std::function<void(const TrafficEntry&)> watcher) {
    watchers.push_back(std::move(watcher));
}

void Traffic::Tell(const std::optional<TrafficEntry>& ended) const {
    if (ended) {
        for (const auto& watcher : watchers) {
            watcher(*ended);
        }
    }
}

std::uint64_t Traffic::Begin(TrafficEntry entry) {
    std::optional<TrafficEntry> ended;
    std::uint64_t number = 0;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        number = entry.number = ++added;
        if (!entry.open) {
            ended = entry;
        }
        const std::size_t kept = KeptBytes(entry);
        bytes += kept;
        items.push_back({std::move(entry), ++changeCount, kept});
        Shrink();
    }
    Tell(ended);
    changes.Note();
    return number;
}

void Traffic::Change(std::uint64_t number, const std::function<void(TrafficEntry&)>& change) {
    std::optional<TrafficEntry> ended;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto item = std::find_if(items.rbegin(), items.rend(),
                                       [&](const Item& one) { return one.entry.number == number; });
        if (item == items.rend()) {
            return;
        }
        const bool wasOpen = item->entry.open;
        change(item->entry);
        if (wasOpen && !item->entry.open) {
            ended = item->entry;
        }
        item->changed = ++changeCount;
        bytes += KeptBytes(item->entry) - item->bytes;
        item->bytes = KeptBytes(item->entry);
        Shrink();
    }
    Tell(ended);
    changes.Note();
}

void Traffic::Shrink() {
    Drop([this] { return items.size() > mostEntries || bytes > mostBytes; });
}

std::vector<TrafficEntry> Traffic::ChangedSince(std::uint64_t& seen) const {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<TrafficEntry> changed;
    for (const Item& item : items) {
        if (item.changed > seen) {
            changed.push_back(item.entry);
        }
    }
    seen = changeCount;
    return changed;
}

std::vector<TrafficEntry> Traffic::Entries() const {
    std::uint64_t seen = 0;
    return ChangedSince(seen);
}

std::optional<TrafficEntry> Traffic::Find(std::uint64_t number) const {
    const std::lock_guard<std::mutex> lock(mutex);
    for (const Item& item : items) {
        if (item.entry.number == number) {
            return item.entry;
        }
    }
    return std::nullopt;
}

void Traffic::Clear() {
    const std::lock_guard<std::mutex> lock(mutex);
    Drop([] { return true; });
    changes.Note();
}

} // namespace TavoSimulator
} // namespace Brenmoor
