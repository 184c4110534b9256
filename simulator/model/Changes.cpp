#include "Changes.h"

namespace Brenmoor {
namespace TavoSimulator {

void Changes::Note() {
    const std::lock_guard<std::mutex> lock(mutex);
    ++count;
    noted.notify_all();
}

std::uint64_t Changes::Await(std::uint64_t seen, std::chrono::milliseconds longest) {
    std::unique_lock<std::mutex> lock(mutex);
    noted.wait_for(lock, longest, [&] { return closed || count > seen; });
    return count;
}

void Changes::AwaitClose(std::chrono::milliseconds longest) {
    std::unique_lock<std::mutex> lock(mutex);
    noted.wait_for(lock, longest, [&] { return closed; });
}

void Changes::Close() {
    const std::lock_guard<std::mutex> lock(mutex);
    closed = true;
    noted.notify_all();
}

bool Changes::Closed() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return closed;
}

} // namespace TavoSimulator
} // namespace Brenmoor
