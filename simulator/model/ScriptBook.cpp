#include "ScriptBook.h"

#include <Poco/String.h>
#include <algorithm>
#include <fnmatch.h>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

void ScriptBook::Add(ScriptRule rule) {
    const std::lock_guard<std::mutex> lock(mutex);
    rules.erase(std::remove_if(rules.begin(), rules.end(),
                               [&](const ScriptRule& other) { return other.match == rule.match; }),
                rules.end());
    rules.push_back(std::move(rule));
}

std::vector<ScriptRule> ScriptBook::Rules() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return rules;
}

std::optional<std::string> ScriptBook::Output(const std::string& id, const std::string& command,
                                              double unixSeconds) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto rule = std::find_if(rules.rbegin(), rules.rend(), [&](const ScriptRule& one) {
        return fnmatch(one.match.c_str(), command.c_str(), 0) == 0;
    });
    if (rule == rules.rend()) {
        return std::nullopt;
    }
    // The command last, so that braces in it are left alone.
    std::string output =
        Poco::replace(rule->output, std::string("{unixSeconds}"), std::to_string(unixSeconds));
    output = Poco::replace(output, std::string("{id}"), id);
    return Poco::replace(output, std::string("{command}"), command);
}

} // namespace TavoSimulator
} // namespace Brenmoor
