#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// What is answered for a script: an output for all commands that match a pattern.
struct ScriptRule {
    /// A glob over the whole command: `*` for any text, `?` for one character, `[ab]` for one of
    /// several.
    std::string match;
    /// May hold {id}, {command} and {unixSeconds}.
    std::string output;
};

/// The outputs of scripts, none of which is ever run. The newest rule that matches counts; without
/// one the output says that nothing was run. Every operation may be called from any thread.
class ScriptBook {
public:
    void Add(ScriptRule rule);
    std::vector<ScriptRule> Rules() const;
    std::string Output(const std::string& id, const std::string& command, double unixSeconds) const;

private:
    mutable std::mutex mutex;
    std::vector<ScriptRule> rules;
};

} // namespace TavoSimulator
} // namespace Brenmoor
