#pragma once

#include "Fault.h"
#include "model/Changes.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// A fault that is to strike.
struct ArmedFault {
    std::uint64_t number = 0;
    std::string fault;
    /// The operation it strikes, or "all".
    std::string operation = "all";
    /// How many replies it still strikes; absent when it is by chance.
    std::optional<std::uint64_t> count;
    /// The chance with which it strikes each reply.
    std::optional<double> probability;
    std::uint64_t hits = 0;
};

/// Which replies go wrong. The first armed fault that fits a reply strikes it.
/// Every operation may be called from any thread.
class FaultPlan {
public:
    explicit FaultPlan(Changes& changes);

    /// Arms a fault. `seed` decides its chances. Returns it with its number.
    /// Throws a Refusal for an unknown fault, and unless it has either a count or a probability.
    ArmedFault Arm(ArmedFault armed, std::uint64_t seed);

    /// Disarms one, or all without a number. False when there is none of that number.
    bool Disarm(std::optional<std::uint64_t> number);

    std::vector<ArmedFault> Armed() const;

    /// The fault for the next reply of an operation, or null.
    const Fault* Take(const std::string& operation);

private:
    struct Item {
        ArmedFault armed;
        std::mt19937_64 chances;
    };

    Changes& changes;
    mutable std::mutex mutex;
    std::vector<Item> items;
    std::uint64_t lastNumber = 0;
};

} // namespace TavoSimulator
} // namespace Brenmoor
