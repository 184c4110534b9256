#include "Journal.h"
#include "EscapedText.h"

#include <iomanip>
#include <sstream>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

std::string Line(const JournalEntry& entry) {
    std::ostringstream line;
    line << entry.time << ' ' << entry.peer << ' ' << Escape(entry.method) << ' '
         << Escape(entry.target) << " (" << entry.requestBytes << " bytes) -> " << entry.status
         << ' ' << entry.reason << " (" << entry.replyBytes << " bytes) after " << std::fixed
         << std::setprecision(3) << entry.seconds << " s";
    return line.str();
}

Journal::Journal(std::size_t theMost) : most(theMost) {}

void Journal::Add(JournalEntry entry) {
    const std::lock_guard<std::mutex> lock(mutex);
    entry.number = ++added;
    entries.push_back(std::move(entry));
    if (entries.size() > most) {
        entries.pop_front();
    }
}

std::deque<JournalEntry> Journal::Entries() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return entries;
}

} // namespace TavoSimulator
} // namespace Brenmoor
