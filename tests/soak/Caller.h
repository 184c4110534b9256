#pragma once

#include "HalcyrREST/Operations.h"

#include <MirrinFramework/Logger.h>

#include <atomic>
#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

/// Calls one client from several threads, every operation in turn. One call in `faultPeriod` meets
/// a fault, so that in the course of time each of the simulator's faults strikes each operation;
/// those are left out which only the client's time limit ends.
class Caller {
public:
    /// Prime to the number of operations.
    static constexpr unsigned long faultPeriod = 17;

    /// What each call leaves behind on purpose, to show that it is seen: nothing, "memory", a
    /// "descriptor", a "thread", or a temporary "file".
    Caller(const std::string& server, const std::string& folder, std::string left);

    /// Calls so often, by so many threads, and returns when all of them have ended.
    void Call(unsigned long calls, unsigned threads);

    /// How many calls met a fault.
    unsigned long Struck() const {
        return struck;
    }
    /// How many of those threw.
    unsigned long Failures() const {
        return failures;
    }
    /// How many calls threw though they met no fault.
    unsigned long Unexplained() const {
        return unexplained;
    }
    /// How many pairs of an operation and a fault there are, and how many of them came together.
    std::size_t Pairs() const {
        return met.size();
    }
    std::size_t PairsMet() const;

private:
    void CallOnce(unsigned long number);
    void Leave(unsigned long number) const;

    /// Takes the log and keeps nothing.
    struct Nowhere : std::streambuf {
        int overflow(int character) override {
            return character;
        }
    };

    const std::string folder;
    const std::string left;
    const std::string file;
    const std::vector<Testing::Operation> operations;
    const std::vector<std::string> faults;
    std::vector<std::atomic<bool>> met;
    Nowhere nowhere;
    std::ostream log{&nowhere};
    MirrinFramework::Logger logger{log, 8};
    HalcyrREST client;
    std::atomic<unsigned long> next{0};
    std::atomic<unsigned long> struck{0};
    std::atomic<unsigned long> failures{0};
    std::atomic<unsigned long> unexplained{0};
};

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
