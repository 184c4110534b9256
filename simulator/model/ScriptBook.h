#pragma once

#include <mutex>
#include <optional>
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

/// The outputs of scripts that are not run. The newest rule that matches counts. Every operation
/// may be called from any thread.
class ScriptBook {
public:
    void Add(ScriptRule rule);
    std::vector<ScriptRule> Rules() const;
    /// None when no rule matches.
    std::optional<std::string> Output(const std::string& id, const std::string& command,
                                      double unixSeconds) const;

private:
    mutable std::mutex mutex;
    std::vector<ScriptRule> rules;
};

} // namespace TavoSimulator
} // namespace Brenmoor
