#pragma once

#include "faults/Fault.h"
#include "faults/Line.h"

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// Writes down what a fault does instead of doing it. After 1000 steps, or 2 MB, or where it would
/// hold, the client is taken to have hung up.
class WritingLine : public Line {
public:
    void Send(const std::string& bytes) override;
    void Pause(std::chrono::milliseconds duration) override;
    void Hold() override;
    void AwaitBody() override;
    void ReadBody(std::size_t most) override;
    void Reset() override;

    /// The first steps, one a line, and what became of the others.
    std::string Script() const;
    /// All that was sent.
    const std::string& Sent() const;
    bool WasReset() const;
    /// Whether the fault goes on until the client hangs up.
    bool IsEndless() const;

private:
    void Step(const std::string& step);

    std::vector<std::string> steps;
    std::string sent;
    std::chrono::milliseconds paused{0};
    bool endless = false;
};

/// Lets the fault play on a request "off" of the payload P1, the healthy reply to which is "OK".
void PlayUsually(const Fault& fault, WritingLine& line);

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
