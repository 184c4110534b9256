#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// The bytes of one direction of an exchange: all are counted, the first ones are kept.
struct RecordedBytes {
    std::string bytes;
    std::uint64_t count = 0;

    bool Whole() const {
        return bytes.size() == count;
    }
};

/// The exact bytes of one exchange, while they pass. Every operation may be called from any thread.
class Recording {
public:
    /// What is kept of each direction, in bytes.
    static constexpr std::size_t most = std::size_t{256} * 1024;

    void AddReceived(const char* bytes, std::size_t count);

    /// What is about to be sent. It is added beforehand, so that whoever received it finds it here.
    void AddSent(const char* bytes, std::size_t count);
    /// Takes back what could not be sent after all.
    void RemoveSent(std::size_t count);

    RecordedBytes Received() const;
    RecordedBytes Sent() const;
    std::uint64_t ReceivedCount() const;
    std::uint64_t SentCount() const;

private:
    mutable std::mutex mutex;
    RecordedBytes received;
    RecordedBytes sent;
};

} // namespace TavoSimulator
} // namespace Brenmoor
