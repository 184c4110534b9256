#include "Options.h"
#include "model/World.h"
#include "wire/Server.h"

#include <Poco/Exception.h>
#include <csignal>
#include <fstream>
#include <iostream>

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

sigset_t EndingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

void Serve(const Options& options) {
    // Blocked before there is a second thread, so that only the wait below receives them.
    const sigset_t signals = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    if (!options.portFile.empty()) {
        // One left by an earlier run would send its reader to the wrong port.
        std::filesystem::remove(options.portFile);
    }
    World world(options.settings);
    const Server server(world, options.address, options.port, options.quiet ? nullptr : &std::cout);
    if (!options.portFile.empty()) {
        WritePortFile(options.portFile, server.Port());
    }
    const std::string line = "tavo-simulator " TAVO_VERSION " listens on " + options.address +
                             " port " + std::to_string(server.Port()) + " and keeps uploads in " +
                             world.files.Folder().string() + "\n";
    std::cout << line << std::flush;
    int received = 0;
    sigwait(&signals, &received);
}

int Fail(const std::string& line, ExitCode code) {
    std::cerr << "tavo-simulator: " << line << '\n';
    return static_cast<int>(code);
}

} // namespace

int main(int count, char** arguments) {
    try {
        const ParsedOptions parsed = ParseOptions({arguments + 1, arguments + count});
        if (!parsed.error.empty()) {
            return Fail(parsed.error, ExitCode::BadOption);
        }
        if (!parsed.options.print.empty()) {
            std::cout << parsed.options.print;
        } else {
            Serve(parsed.options);
        }
        return static_cast<int>(ExitCode::Success);
    } catch (const Poco::Exception& failure) {
        return Fail(failure.displayText(), ExitCode::Failure);
    } catch (const std::exception& failure) {
        return Fail(failure.what(), ExitCode::Failure);
    }
}
