#include "Options.h"

#include <CLI/CLI.hpp>
#include <Poco/Net/IPAddress.h>
#include <algorithm>
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

std::string ReadWhole(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    if (!file) {
        throw ScenarioMistake("cannot be read");
    }
    return content.str();
}

/// What the command line says wins over what the scenario says.
void LoadScenario(const CLI::App& app, const std::string& name, Options& options) {
    try {
        options.scenario = ParseScenario(ReadWhole(name));
    } catch (const ScenarioMistake& mistake) {
        throw ScenarioMistake(name + ": " + mistake.what());
    }
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

void Describe(CLI::App& app, Options& options, std::string& scenarioFile) {
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
    app.add_option("--max-payloads", settings.mostPayloads, "Refuse more payloads than these")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--max-upload", settings.mostUploadBytes, "Refuse larger uploads")
        ->type_name("BYTES")
        ->capture_default_str();
    app.add_option("--scenario", scenarioFile, "Play this file, and exit as it ends")
        ->type_name("FILE")
        ->check(CLI::ExistingFile);
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
    std::string scenarioFile;
    Describe(app, options, scenarioFile);
    app.add_subcommand("faults", "List the faults and exit")->callback([&] {
        options.print = FaultList();
    });
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        if (!scenarioFile.empty()) {
            LoadScenario(app, scenarioFile, options);
        }
    } catch (const CLI::CallForHelp&) {
        options.print = app.help();
    } catch (const CLI::CallForVersion&) {
        options.print = app.version() + "\n";
    } catch (const CLI::ParseError& bad) {
        parsed.error = std::string(bad.what()) + "; see --help";
        std::replace(parsed.error.begin(), parsed.error.end(), '\n', ' ');
    } catch (const ScenarioMistake& mistake) {
        parsed.error = mistake.what();
    }
    return parsed;
}

} // namespace TavoSimulator
} // namespace Brenmoor
