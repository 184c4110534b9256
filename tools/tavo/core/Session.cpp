#include "core/Session.h"

#include "core/Failure.h"

#include <algorithm>
#include <iostream>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

namespace {

Output::Mode ModeOf(const CommonOptions& options) {
    if (options.quiet) {
        return Output::Mode::Quiet;
    }
    return options.json ? Output::Mode::Json : Output::Mode::Text;
}

} // namespace

Session::Session(const CommonOptions& commonOptions, const std::string& commandName)
    : options(commonOptions), output(ModeOf(commonOptions)), name(commandName),
      // The library writes the line of a GET at any level: without -v there is no stream for it.
      log(options.verbosity > 0 ? std::clog.rdbuf() : nullptr),
      logger(log, options.verbosity > 1 ? 8 : 7) {}

Session::~Session() = default;

TavoRemotingLib::HalcyrREST& Session::Client() {
    if (client == nullptr) {
        CheckServer(options.server);
        client =
            std::make_unique<TavoRemotingLib::HalcyrREST>(options.server, logger, options.trace);
    }
    return *client;
}

const std::string& Session::Id() const {
    if (Ids().size() > 1) {
        throw UsageError("--id is given twice", "this command is about one payload");
    }
    return Ids().front();
}

const std::vector<std::string>& Session::Ids() const {
    const auto& ids = options.ids;
    if (ids.empty() || std::find(ids.begin(), ids.end(), "") != ids.end()) {
        throw UsageError("no payload given", "name it with --id ID or in TAVO_ID");
    }
    return ids;
}

void Session::Transfer(const std::function<void()>& exchange, const Load& load) const {
    if (options.quiet || options.verbosity > 0 || options.trace || !IsTerminal(STDERR_FILENO)) {
        exchange();
        return;
    }
    Progress progress("tavo " + name, load);
    exchange();
    progress.Done();
}

void CheckServer(const std::string& server) {
    if (server.empty()) {
        throw UsageError("no server given", "name it with --server HOST:PORT or in TAVO_SERVER");
    }
    const std::size_t scheme = server.find("://");
    const std::size_t begin = scheme == std::string::npos ? 0 : scheme + 3;
    const std::string host = server.substr(begin, server.find_first_of("/?#", begin) - begin);
    if (host == server && host.find_first_of(" @\\\t\r\n") == std::string::npos) {
        return;
    }
    const std::string what = scheme != std::string::npos ? "has a scheme"
                             : host != server            ? "has more than host and port"
                                                         : "is not an address";
    throw UsageError("the server '" + server + "' " + what, host.empty() || host == server
                                                                ? "write HOST or HOST:PORT"
                                                                : "write '" + host + "'");
}

} // namespace Tavo
} // namespace Brenmoor
