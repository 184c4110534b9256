#pragma once

#include "HalcyrREST/Operations.h"
#include "support/Interposer.h"
#include "support/Wire.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// What became of one call of the client whose reply a fault struck.
struct Outcome {
    std::string call;
    /// The exception's type, without the library's namespace; empty when there was none.
    std::string type;
    /// Its message, or what the caller can see of a success.
    std::string text;
};

/// A client of a simulator, and a fault for each of its calls.
class Victim {
public:
    explicit Victim(const TavoSimulator::Fault& fault);

    /// A call of each kind, each struck by the fault: a GET whose reply's body is handed over, a
    /// poll with a command and a position to report, and an upload.
    std::vector<Outcome> Outcomes();

    /// Any operation but a poll, struck by the fault. Several may be called at a time.
    Outcome OutcomeOf(const Operation& operation);

private:
    Outcome Struck(const std::string& operation, const std::string& call, const std::string& label,
                   const std::function<std::string()>& action);
    std::string RunScript();
    std::string Poll();
    std::string SendFile();

    const TavoSimulator::Fault& fault;
    TavoSimulator::World& world;
    const std::string address;
    /// The commands that a failed poll had read before it failed.
    std::string behind;
    Interposer interposer;
    std::ostringstream log;
    MirrinFramework::Logger logger{log, 0};
    HalcyrREST client;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
