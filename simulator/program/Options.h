#pragma once

#include "model/World.h"
#include "scenario/Scenario.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// The exit codes of the program, which its help lists.
enum class ExitCode { Success = 0, Failure = 1, BadOption = 2, ScenarioNotMet = 3 };

struct Options {
    Settings settings;
    std::uint16_t port = 8080;
    std::string address = "127.0.0.1";
    /// Empty for none.
    std::string portFile;
    bool quiet = false;
    /// Empty for none.
    std::string journalFile;
    /// What to play, if anything.
    std::optional<Scenario> scenario;
    /// What to print instead of serving; empty to serve. Its first word tells which subcommand.
    std::string print;
};

/// What the command line asked for, or what is wrong with it.
struct ParsedOptions {
    Options options;
    /// When not empty, one line that says what is wrong.
    std::string error;
};

ParsedOptions ParseOptions(const std::vector<std::string>& arguments);

} // namespace TavoSimulator
} // namespace Brenmoor
