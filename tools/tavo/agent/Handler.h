#pragma once

#include "agent/Signals.h"

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Brenmoor {
namespace Tavo {

/// A program to be run, and its bounds.
struct HandlerCall {
    std::vector<std::string> words; ///< the program and its arguments; no shell sees them
    std::vector<std::pair<std::string, std::string>> environment; ///< besides the agent's own
    std::string input;                                            ///< all of its standard input
    std::chrono::milliseconds longest{0};
    std::size_t mostOutput = 0;           ///< in bytes; what is more is read and dropped
    std::chrono::milliseconds between{0}; ///< between two calls of `progress`; 0 for none
    std::function<bool(const std::string& newOutput)> progress; ///< true when it is told
    std::function<void()> alive; ///< called at least twice a second while it runs
};

/// How it ended.
struct HandlerResult {
    bool succeeded = false; ///< it exited with 0
    std::string output;     ///< what was not given to `progress`, and how it failed
};

/// Runs it to its end, in a process group of its own, standard output and error together. When it
/// takes too long, or the agent is to stop, its group gets SIGTERM and, a second later, SIGKILL;
/// whatever of the group outlives it is killed too. The time is kept while `progress` or `alive`
/// waits.
HandlerResult RunHandler(const HandlerCall& call, const Signals& signals);

} // namespace Tavo
} // namespace Brenmoor
