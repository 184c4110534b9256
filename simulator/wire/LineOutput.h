#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Lines for whoever reads them, such as through a pipe. Who stops reading holds nobody up: what
/// comes until it is read again is left out, and then told by its number of lines. Every operation
/// may be called from any thread.
class LineOutput {
public:
    /// The descriptor must outlive this. A line is left out once `patience` has passed without
    /// anything being read.
    explicit LineOutput(int descriptor,
                        std::chrono::milliseconds patience = std::chrono::seconds(2));

    /// Adds a line end.
    void Write(const std::string& line);

    /// To be called last. The number of lines that were left out, and this text, wait for whoever
    /// reads them until `givesUp`, which is asked each time that the patience is at its end.
    void Finish(const std::string& text, const std::function<bool()>& givesUp);

private:
    bool AwaitReader();
    bool Flush();
    void TellLeftOut();

    const int descriptor;
    const std::chrono::milliseconds patience;
    std::mutex mutex;
    /// What is still to be written of lines that were not left out.
    std::string rest;
    std::uint64_t leftOut = 0;
    bool isRead = true;
};

} // namespace TavoSimulator
} // namespace Brenmoor
