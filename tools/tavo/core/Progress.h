#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace Brenmoor {
namespace Tavo {

/// What a transfer carries, as far as it is known beforehand.
struct Load {
    std::optional<std::uint64_t> size;
    std::string file = {}; ///< empty when it is not read from a file
};

/// Tells on standard error, which is a terminal, how long a transfer takes: from its second second
/// on, on one line that is written anew each second, with size and rate where they are known.
class Progress {
public:
    Progress(std::string label, Load load);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Wipes the line.
    ~Progress();

    /// The transfer is done: when it took long and has a size, its line stays.
    void Done();

private:
    void Watch();
    void Stop();
    void Show(const std::string& text);
    std::string Line() const;
    double Elapsed() const;
    /// How far the file has been read, which is about what has been sent; nothing while it is not
    /// open.
    std::optional<std::uint64_t> Sent() const;

    const std::string label;
    const Load load;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::size_t shown = 0;
    bool isStopped = false;
    std::mutex mutex;
    std::condition_variable stopped;
    std::thread watcher;
};

/// A number of bytes for people: "999 B", "1.5 kB", "20.0 MB".
std::string Amount(double bytes);

} // namespace Tavo
} // namespace Brenmoor
