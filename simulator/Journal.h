#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// One exchange as it went over the wire. The sizes are those of the bodies.
struct JournalEntry {
    std::uint64_t number = 0;
    std::string time;
    std::string peer;
    std::string method;
    std::string target;
    int status = 0;
    std::string reason;
    std::uintmax_t requestBytes = 0;
    std::uintmax_t replyBytes = 0;
    double seconds = 0;
};

/// An entry as one readable line, without a line end.
std::string Line(const JournalEntry& entry);

/// The newest exchanges in the order of their ends. Every operation may be called from any thread.
class Journal {
public:
    /// Keeps at most `most` entries; older ones are dropped.
    explicit Journal(std::size_t most = 10000);

    /// Numbers the entry, from 1, and adds it.
    void Add(JournalEntry entry);

    std::deque<JournalEntry> Entries() const;

private:
    const std::size_t most;
    mutable std::mutex mutex;
    std::uint64_t added = 0;
    std::deque<JournalEntry> entries;
};

} // namespace TavoSimulator
} // namespace Brenmoor
