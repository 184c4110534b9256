#include "FaultPlan.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

bool Strikes(ArmedFault& armed, std::mt19937_64& chances) {
    if (armed.probability) {
        return static_cast<double>(chances() >> 11) * 0x1p-53 < *armed.probability;
    }
    --*armed.count;
    return true;
}

} // namespace

FaultPlan::FaultPlan(Changes& theChanges) : changes(theChanges) {}

ArmedFault FaultPlan::Arm(ArmedFault armed, std::uint64_t seed) {
    FindFault(armed.fault);
    if (armed.probability.has_value() == armed.count.has_value() ||
        armed.count == std::uint64_t{0}) {
        throw BadRequest("A fault needs a count of 1 or more, or a probability");
    }
    const std::lock_guard<std::mutex> lock(mutex);
    armed.number = ++lastNumber;
    items.push_back({armed, std::mt19937_64(seed)});
    changes.Note();
    return armed;
}

bool FaultPlan::Disarm(std::optional<std::uint64_t> number) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto end = std::remove_if(items.begin(), items.end(), [&](const Item& item) {
        return !number || item.armed.number == *number;
    });
    const bool found = !number || end != items.end();
    items.erase(end, items.end());
    changes.Note();
    return found;
}

std::vector<ArmedFault> FaultPlan::Armed() const {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<ArmedFault> armed;
    for (const Item& item : items) {
        armed.push_back(item.armed);
    }
    return armed;
}

const Fault* FaultPlan::Take(const std::string& operation) {
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto item = items.begin(); item != items.end(); ++item) {
        ArmedFault& armed = item->armed;
        const bool fits = armed.operation == "all" || armed.operation == operation;
        if (!fits || !Strikes(armed, item->chances)) {
            continue;
        }
        ++armed.hits;
        const Fault* const fault = &FindFault(armed.fault);
        if (armed.count == std::uint64_t{0}) {
            items.erase(item);
        }
        changes.Note();
        return fault;
    }
    return nullptr;
}

} // namespace TavoSimulator
} // namespace Brenmoor
