#pragma once

#include "HalcyrREST/Operations.h"

#include <MirrinFramework/Logger.h>

#include <atomic>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

/// Calls one client from several threads, every operation in turn.
class Caller {
public:
    /// What each call leaves behind on purpose, to show that it is seen: nothing, "memory", a
    /// "descriptor", or a temporary "file".
    Caller(const std::string& server, const std::string& folder, std::string left);

    /// Calls so often, by so many threads, and returns when all of them have ended.
    void Call(unsigned long calls, unsigned threads);

    unsigned long Failures() const {
        return failures;
    }

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
    Nowhere nowhere;
    std::ostream log{&nowhere};
    MirrinFramework::Logger logger{log, 8};
    HalcyrREST client;
    std::atomic<unsigned long> next{0};
    std::atomic<unsigned long> failures{0};
};

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
