// The loop at the heart of a host program: poll for commands, position and shutdown, and carry on
// when something fails. Usage: poll_loop SERVER ID

#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <string>
#include <vector>

namespace {

using Brenmoor::MirrinFramework::Logger;
using Brenmoor::TavoRemotingLib::HalcyrREST;
using Brenmoor::TavoRemotingLib::CurlUtils::CurlEasyException;
using std::chrono::milliseconds;

// A call cannot be interrupted, so a poll is as long as the program may take to stop.
constexpr long pollMs = 10000;
constexpr long mostCommands = 10;
// Between tries while the server is away: twice as long each time, but no longer than this.
constexpr milliseconds firstPause(250);
constexpr milliseconds longestPause(32000);

/// SIGTERM and SIGINT are kept back, so that they interrupt nothing, and asked for where it suits.
class StopSignals {
public:
    StopSignals() {
        sigemptyset(&signals);
        sigaddset(&signals, SIGTERM);
        sigaddset(&signals, SIGINT);
        sigprocmask(SIG_BLOCK, &signals, nullptr); // threads that start later inherit this
    }

    /// Whether one has come; waits for it so long.
    bool Come(milliseconds wait) const {
        timespec time = {};
        time.tv_sec = static_cast<time_t>(wait.count() / 1000);
        time.tv_nsec = static_cast<long>(wait.count() % 1000) * 1000000;
        return sigtimedwait(&signals, nullptr, &time) > 0;
    }

private:
    sigset_t signals = {};
};

/// What a poll can bring.
struct News {
    std::vector<HalcyrREST::RemoteCommand> commands;
    HalcyrREST::GPSInfo position;
    HalcyrREST::ShutdownInfo shutdown;
};

/// Polls once and returns what went wrong; nothing, as a rule. Throws what will be wrong next time
/// too.
std::string Poll(HalcyrREST& client, std::vector<std::string>& ids, News& news) {
    try {
        client.Poll(ids, &news.commands, &news.position, &news.shutdown, pollMs, mostCommands);
    } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
        return ""; // nothing happened in that time
    } catch (const std::invalid_argument&) {
        throw; // the call asks for nothing
    } catch (const CurlEasyException& e) {
        if (e.code == CURLE_URL_MALFORMAT) {
            throw; // that is no server's address
        }
        return e.what();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "";
}

void Answer(HalcyrREST& client, const std::string& id, const HalcyrREST::RemoteCommand& command) {
    std::cout << (command.isFile ? "file: " : "command: ") << command.command << std::endl;
    try {
        client.RespondToCommand(id, command.tag, "done", /* complete = */ true,
                                /* succeeded = */ true);
    } catch (const std::exception& e) {
        std::cerr << "answer lost: " << e.what() << std::endl;
    }
}

void Tell(const HalcyrREST::GPSInfo& position) {
    if (position.hasError) {
        std::cout << "no position: " << position.errorText << std::endl;
    } else {
        std::cout << "position: " << position.latitude << " " << position.longitude << std::endl;
    }
}

/// Serves until the payload is told to shut down (then true) or the program to stop.
bool Serve(HalcyrREST& client, const std::string& id, const StopSignals& stop) {
    std::vector<std::string> ids = {id};
    milliseconds pause(0);
    while (!stop.Come(pause)) {
        News news;
        const std::string failure = Poll(client, ids, news);
        // First, and after a failure too: the server has ticked off what it sent before it.
        for (const HalcyrREST::RemoteCommand& command : news.commands) {
            Answer(client, id, command);
        }
        if (news.position.received) {
            Tell(news.position);
        }
        if (news.shutdown.requested) {
            return true;
        }
        if (failure.empty()) {
            pause = milliseconds(0);
            continue;
        }
        pause = pause.count() == 0 ? firstPause : std::min(pause * 2, longestPause);
        std::cerr << "poll failed, next in " << pause.count() << " ms: " << failure << std::endl;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: poll_loop SERVER ID" << std::endl;
        return 2;
    }
    try {
        const StopSignals stop;
        Logger logger(std::clog, 0);
        HalcyrREST client(argv[1], logger, /* verbose = */ false);
        if (Serve(client, argv[2], stop)) {
            std::cout << "shutting down" << std::endl;
            client.TurnPayloadOff(argv[2]);
        } else {
            std::cout << "stopped" << std::endl;
        }
    } catch (const std::exception& e) {
        std::cerr << "poll_loop: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
