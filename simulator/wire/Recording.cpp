#include "Recording.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

void Add(RecordedBytes& recorded, const char* bytes, std::size_t count) {
    // Nothing is kept behind a gap.
    if (recorded.Whole()) {
        recorded.bytes.append(bytes, std::min(count, Recording::most - recorded.bytes.size()));
    }
    recorded.count += count;
}

} // namespace

void Recording::AddReceived(const char* bytes, std::size_t count) {
    const std::lock_guard<std::mutex> lock(mutex);
    Add(received, bytes, count);
}

void Recording::AddSent(const char* bytes, std::size_t count) {
    const std::lock_guard<std::mutex> lock(mutex);
    Add(sent, bytes, count);
}

void Recording::RemoveSent(std::size_t count) {
    const std::lock_guard<std::mutex> lock(mutex);
    sent.count -= count;
    sent.bytes.resize(
        static_cast<std::size_t>(std::min<std::uint64_t>(sent.bytes.size(), sent.count)));
}

RecordedBytes Recording::Received() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return received;
}

RecordedBytes Recording::Sent() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return sent;
}

std::uint64_t Recording::ReceivedCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return received.count;
}

std::uint64_t Recording::SentCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return sent.count;
}

} // namespace TavoSimulator
} // namespace Brenmoor
