#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// How long a script may run, in real time, and how much it may write.
struct ScriptLimits {
    double seconds = 60;
    std::size_t bytes = std::size_t{1024} * 1024;
};

/// What became of a script that was run.
struct ScriptRun {
    /// Of both standard output and standard error.
    std::string output;
    /// Absent when a signal ended it.
    std::optional<int> exitStatus;
    /// Why it was killed; empty when it was not.
    std::string killed;
};

/// Runs a command without a shell: its words are split at blanks, and the first one names an
/// executable file that is directly in the folder, which is its working directory. It has a process
/// group of its own, which is killed as the script ends, at a limit, and once `closing` is true.
/// Throws a Refusal for a command that names no such file, or that cannot be started.
ScriptRun RunScriptIn(const std::string& folder, const std::string& command,
                      const ScriptLimits& limits, const std::function<bool()>& closing);

} // namespace TavoSimulator
} // namespace Brenmoor
