#pragma once

#include "core/Description.h"
#include "core/Output.h"
#include "core/Progress.h"

#include <MirrinFramework/Logger.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace Brenmoor {
namespace Tavo {

/// What a command runs with: whom it talks to, and where its result goes.
class Session {
public:
    Session(const CommonOptions& options, const std::string& commandName);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    /// The client of the payload server, the same one each time. Throws UsageError when no server
    /// is given or it is not HOST or HOST:PORT.
    TavoRemotingLib::HalcyrREST& Client();

    /// The one payload. Throws UsageError when none or several are given.
    const std::string& Id() const;
    /// The payloads, at least one.
    const std::vector<std::string>& Ids() const;

    /// Runs an exchange with the server. When it takes longer than a second, a terminal shows how
    /// it goes, unless --quiet, a log or a trace is asked for.
    void Transfer(const std::function<void()>& exchange, const Load& load = {}) const;

    const CommonOptions& options;
    const Output output;

private:
    const std::string name;
    std::ostream log;
    MirrinFramework::Logger logger;
    std::unique_ptr<TavoRemotingLib::HalcyrREST> client;
};

/// Throws UsageError with a hint unless the address is HOST or HOST:PORT.
void CheckServer(const std::string& server);

} // namespace Tavo
} // namespace Brenmoor
