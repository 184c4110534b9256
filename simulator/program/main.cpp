#include "Options.h"
#include "control/JournalFile.h"
#include "model/World.h"
#include "scenario/Player.h"
#include "shared/StandardStreams.h"
#include "wire/Server.h"

#include <Poco/Exception.h>
#include <algorithm>
#include <csignal>
#include <fstream>
#include <iostream>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace Brenmoor::TavoSimulator;

/// Whoever waits for the file never sees it half written.
void WritePortFile(const std::string& name, std::uint16_t port) {
    const std::string unfinished = name + ".new";
    std::ofstream file(unfinished);
    file << port << '\n';
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write the port file '" + name + "'");
    }
    std::filesystem::rename(unfinished, name);
}

/// SIGINT and SIGTERM. To be made before there is a second thread, so that only its waits receive
/// them.
class EndingSignals {
public:
    EndingSignals() {
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }

    void Await() const {
        int received = 0;
        sigwait(&signals, &received);
    }

    /// Waits for so long. True when one has come.
    bool Await(std::chrono::milliseconds longest) const {
        constexpr long second = 1000;
        timespec time{};
        time.tv_sec = static_cast<time_t>(longest.count() / second);
        time.tv_nsec = static_cast<long>(longest.count() % second) * 1000000;
        return sigtimedwait(&signals, nullptr, &time) > 0;
    }

private:
    sigset_t signals{};
};

/// Returns once the scenario is over, or false when a signal ended it before.
bool Play(Player& player, const EndingSignals& signals) {
    // How often to look whether the expectations are met.
    constexpr std::chrono::milliseconds glance(20);
    for (;;) {
        player.PlayDue();
        if (player.Over()) {
            return true;
        }
        if (signals.Await(player.Pause(glance))) {
            return false;
        }
    }
}

/// What the report says, line by line.
std::string TextOf(const Player::Report& report, bool ended) {
    std::string text;
    for (const std::string& line : report.lines) {
        text += line + "\n";
    }
    return text + (ended ? "" : "scenario: ended by a signal\n");
}

/// Idle connections take no more than descriptors, of which there are few unless asked for.
void RaiseDescriptorLimit() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 8192);
    setrlimit(RLIMIT_NOFILE, &limit);
}

ExitCode Serve(const Options& options) {
    RaiseDescriptorLimit();
    const EndingSignals signals;
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is told as any other failure

    if (!options.portFile.empty()) {
        // One left by an earlier run would send its reader to the wrong port.
        std::filesystem::remove(options.portFile);
    }
    World world(options.settings);
    std::optional<JournalFile> journal;
    if (!options.journalFile.empty()) {
        journal.emplace(options.journalFile, world);
    }
    std::optional<Player> player;
    if (options.scenario) {
        player.emplace(*options.scenario, world);
        player->PlayDue(); // what is to be there when the first payload comes
    }
    LineOutput output(STDOUT_FILENO);
    std::optional<Server> server;
    server.emplace(world, options.address, options.port, options.quiet ? nullptr : &output);
    if (!options.portFile.empty()) {
        WritePortFile(options.portFile, server->Port());
    }
    output.Write("tavo-simulator " TAVO_VERSION " listens on " + options.address + " port " +
                 std::to_string(server->Port()) + " and keeps uploads in " +
                 world.files.Folder().string());
    ExitCode code = ExitCode::Success;
    std::string report;
    bool isSignalled = true;
    if (player) {
        isSignalled = !Play(*player, signals);
        const Player::Report conclusion = player->Conclude();
        report = TextOf(conclusion, !isSignalled);
        code = conclusion.met && !isSignalled ? ExitCode::Success : ExitCode::ScenarioNotMet;
    } else {
        signals.Await();
    }
    server.reset();
    // A scenario's verdict waits for its reader until a signal comes.
    output.Finish(report,
                  [&] { return isSignalled || signals.Await(std::chrono::milliseconds(100)); });
    return code == ExitCode::Success && journal && journal->Failed() ? ExitCode::Failure : code;
}

int Fail(const std::string& line, ExitCode code) {
    std::cerr << "tavo-simulator: " << line << '\n';
    return static_cast<int>(code);
}

} // namespace

int main(int count, char** arguments) {
    Brenmoor::FillStandardStreams();
    try {
        const ParsedOptions parsed = ParseOptions({arguments + 1, arguments + count});
        if (!parsed.error.empty()) {
            return Fail(parsed.error, ExitCode::BadOption);
        }
        if (parsed.options.print.empty()) {
            return static_cast<int>(Serve(parsed.options));
        }
        std::cout << parsed.options.print;
        return static_cast<int>(ExitCode::Success);
    } catch (const Poco::Exception& failure) {
        return Fail(failure.displayText(), ExitCode::Failure);
    } catch (const std::exception& failure) {
        return Fail(failure.what(), ExitCode::Failure);
    }
}
