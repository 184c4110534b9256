#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// The simulator as a program. What it writes is read through pipes.
class Process {
public:
    explicit Process(const std::vector<std::string>& arguments);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    /// Kills a program that still runs.
    ~Process();

    /// The next line of its standard output, without the line end; empty at its end.
    std::string ReadLine();
    void Signal(int number) const;
    /// Waits for its end and returns its exit code, or minus the signal that ended it.
    int Wait();
    /// All the rest of standard output, and all of standard error. For use after Wait().
    std::string RestOfOutput();
    std::string Errors();

private:
    pid_t id = 0;
    int output = -1;
    int errors = -1;
};

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
