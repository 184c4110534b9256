#include "Options.h"

#include <CLI/CLI.hpp>
#include <Poco/Net/IPAddress.h>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr char footer[] =
    "\nThe payloads talk to /xp; the page is at /, the control interface at /sim/v1/.\n"
    "SIGINT and SIGTERM end it.\n\n"
    "Exit codes:\n"
    "  0  ended by SIGINT or SIGTERM, or the scenario is met\n"
    "  1  a failure, such as a port that is taken\n"
    "  2  bad options, or a mistake in a file that they name\n"
    "  3  the scenario is not met, or was ended by a signal\n";

std::string CheckAddress(const std::string& text) {
    Poco::Net::IPAddress address;
    return Poco::Net::IPAddress::tryParse(text, address) ? "" : "not an IP address: " + text;
}

/// Otherwise an empty text would be 0, a negative whole number or one beyond 64 bits a great one,
/// and "nan" in any range.
std::string CheckNumber(const std::string& text) {
    errno = 0;
    std::strtoull(text.c_str(), nullptr, 0);
    if (errno == ERANGE) {
        return "too great a number: '" + text + "'";
    }
    return text.find_first_of(".0123456789") == 0 ? "" : "not a number from 0 on: '" + text + "'";
}

std::string FaultList() {
    std::size_t width = 0;
    for (const Fault& fault : FaultCatalogue()) {
        width = std::max(width, std::string(fault.name).size());
    }
    std::ostringstream list;
    std::string group;
    for (const Fault& fault : FaultCatalogue()) {
        if (group != fault.group) {
            group = fault.group;
            list << (list.tellp() > 0 ? "\n" : "") << group << '\n';
        }
        list << "  " << std::left << std::setw(static_cast<int>(width)) << fault.name << "  "
             << fault.summary << '\n';
    }
    return list.str();
}

/// What `read` makes of a file. Throws a FileMistake that begins with its name.
template <typename Function>
auto FromFile(const std::string& name, const Function& read) {
    try {
        std::ifstream file(name, std::ios::binary);
        if (!file) {
            throw FileMistake("cannot be read");
        }
        return read(file);
    } catch (const FileMistake& mistake) {
        throw FileMistake(name + ": " + mistake.what());
    }
}

/// What the command line says wins over what the scenario says.
void LoadScenario(const CLI::App& app, const std::string& name, Options& options) {
    options.scenario = FromFile(name, [](std::istream& file) {
        std::ostringstream content;
        content << file.rdbuf();
        return ParseScenario(content.str());
    });
    const Scenario& scenario = *options.scenario;
    Settings& settings = options.settings;
    if (app.count("--speed") == 0) {
        settings.clockSpeed = scenario.speed.value_or(settings.clockSpeed);
    }
    if (app.count("--start") == 0) {
        settings.startUnixSeconds = scenario.startUnixSeconds;
    }
    if (app.count("--seed") == 0) {
        settings.seed = scenario.seed.value_or(settings.seed);
    }
}

/// The files that are read before anything starts.
struct FileNames {
    std::string scenario;
    std::string replay;
};

void DescribeFiles(CLI::App& app, Options& options, FileNames& files) {
    CLI::Option* const scenario =
        app.add_option("--scenario", files.scenario, "Play this file, and exit as it ends")
            ->type_name("FILE")
            ->check(CLI::ExistingFile);
    app.add_option("--journal", options.journalFile,
                   "Append every exchange to this file as it ends")
        ->type_name("FILE");
    CLI::Option* const scripts =
        app.add_option("--allow-scripts", options.settings.scriptFolder,
                       "Run scripts, those that are executable files in this folder")
            ->type_name("DIR")
            ->check(CLI::ExistingDirectory);
    CLI::Option* const timeout =
        app.add_option("--script-timeout", options.settings.scriptLimits.seconds,
                       "Kill a script that runs longer")
            ->type_name("SECONDS")
            ->capture_default_str()
            ->check(CLI::Range(0.001, 1e6))
            ->needs(scripts);
    CLI::Option* const replay =
        app.add_option("--replay", files.replay, "Give the replies of this journal once more")
            ->type_name("FILE")
            ->check(CLI::ExistingFile);
    replay->excludes(scenario)->excludes(scripts)->excludes(timeout);
    for (const char* const name : {"--seed", "--max-payloads", "--max-upload"}) {
        replay->excludes(app.get_option(name));
    }
}

void Describe(CLI::App& app, Options& options, FileNames& files) {
    Settings& settings = options.settings;
    app.add_option("--port", options.port, "Listen on this port; 0 takes any free one")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--bind,--address", options.address, "Listen on this IP address")
        ->type_name("A")
        ->capture_default_str()
        ->check(CheckAddress);
    app.add_option("--data", settings.dataFolder, "Keep uploads in this folder")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--port-file", options.portFile,
                   "Write the port to this file once the server listens")
        ->type_name("FILE");
    app.add_option("--speed", settings.clockSpeed,
                   "Simulated seconds for each real one; 0 stands still")
        ->type_name("X")
        ->capture_default_str()
        ->check(CLI::Range(0.0, 1e5));
    app.add_option("--start", settings.startUnixSeconds, "Unix time at the start")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e11));
    app.add_option("--seed", settings.seed, "Seed of noise and of faults by chance")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--redeliver", settings.redeliverSeconds,
                   "Deliver a command again after so long without an answer; 0 for never")
        ->type_name("SECONDS")
        ->capture_default_str()
        ->check(CLI::Range(0.0, 1e9));
    app.add_option("--max-payloads", settings.mostPayloads, "Refuse more payloads than these")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--max-upload", settings.mostUploadBytes, "Refuse larger uploads")
        ->type_name("BYTES")
        ->capture_default_str();
    DescribeFiles(app, options, files);
    for (const char* const name : {"--port", "--speed", "--start", "--seed", "--redeliver",
                                   "--max-payloads", "--max-upload", "--script-timeout"}) {
        app.get_option(name)->check(CheckNumber);
    }
    app.add_flag("--quiet", options.quiet, "Do not print a line for every exchange");
    app.add_flag_callback(
        "--headless", [&settings] { settings.page = false; }, "Do not serve the page");
}

} // namespace

ParsedOptions ParseOptions(const std::vector<std::string>& arguments) {
    ParsedOptions parsed;
    Options& options = parsed.options;
    options.settings.dataFolder = "tavo-data";
    CLI::App app("A payload server for the desk.", "tavo-simulator");
    app.footer(footer);
    app.set_version_flag("--version", "tavo-simulator " TAVO_VERSION);
    FileNames files;
    Describe(app, options, files);
    app.add_subcommand("faults", "List the faults and exit")->callback([&] {
        options.print = FaultList();
    });
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        if (!files.scenario.empty()) {
            LoadScenario(app, files.scenario, options);
        }
        if (!files.replay.empty()) {
            options.settings.replay = FromFile(
                files.replay, [](std::istream& file) { return std::make_shared<Replay>(file); });
        }
    } catch (const CLI::CallForHelp&) {
        options.print = app.help();
    } catch (const CLI::CallForVersion&) {
        options.print = app.version() + "\n";
    } catch (const CLI::ParseError& bad) {
        parsed.error = std::string(bad.what()) + "; see --help";
        std::replace(parsed.error.begin(), parsed.error.end(), '\n', ' ');
    } catch (const FileMistake& mistake) {
        parsed.error = mistake.what();
    }
    return parsed;
}

} // namespace TavoSimulator
} // namespace Brenmoor
