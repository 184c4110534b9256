#pragma once

#include "../../support/Program.h"

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// The simulator as a program.
class Process : public TavoRemotingLib::Testing::Program {
public:
    explicit Process(const std::vector<std::string>& arguments) : Program(Words(arguments)) {}

private:
    static std::vector<std::string> Words(const std::vector<std::string>& arguments) {
        std::vector<std::string> words = TavoRemotingLib::Testing::CommandOf(SIMULATOR_PATH);
        words.insert(words.end(), arguments.begin(), arguments.end());
        return words;
    }
};

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
