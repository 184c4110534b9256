#include "Options.h"

#include <Poco/Net/IPAddress.h>
#include <charconv>

namespace Brenmoor {
namespace TavoSimulator {

const char usage[] =
    "Usage: tavo-simulator [OPTION]...\n"
    "A payload server for the desk: answers at /xp, is steered at /sim/.\n"
    "\n"
    "  --port N          listen on this port (default 8080; 0 takes any free one)\n"
    "  --address A       listen on this IP address (default 127.0.0.1)\n"
    "  --data DIR        keep uploads in this folder (default tavo-data)\n"
    "  --port-file FILE  write the port to this file once the server listens\n"
    "  --quiet           do not print a line for every exchange\n"
    "  --help            print this and exit\n"
    "  --version         print the version and exit\n"
    "\n"
    "SIGINT and SIGTERM end it. Exit code: 0 after that, 1 for a failure, 2 for bad options.\n";

namespace {

std::uint16_t Port(const std::string& text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, port);
    if (result.ec != std::errc() || result.ptr != end) {
        throw BadOption("--port needs a number from 0 to 65535, not '" + text + "'");
    }
    return port;
}

std::string Address(const std::string& text) {
    Poco::Net::IPAddress address;
    if (!Poco::Net::IPAddress::tryParse(text, address)) {
        throw BadOption("--address needs an IP address, not '" + text + "'");
    }
    return text;
}

bool SetFlag(Options& options, const std::string& name) {
    if (name == "--quiet") {
        options.quiet = true;
    } else if (name == "--help") {
        options.help = true;
    } else if (name == "--version") {
        options.version = true;
    } else {
        return false;
    }
    return true;
}

void SetValue(Options& options, const std::string& name, const std::string& value) {
    if (value.empty()) {
        throw BadOption(name + " needs a value");
    }
    if (name == "--port") {
        options.port = Port(value);
    } else if (name == "--address") {
        options.address = Address(value);
    } else if (name == "--data") {
        options.dataFolder = value;
    } else {
        options.portFile = value;
    }
}

bool TakesValue(const std::string& name) {
    return name == "--port" || name == "--address" || name == "--data" || name == "--port-file";
}

} // namespace

BadOption::BadOption(const std::string& line) : std::runtime_error(line) {}

BadOption::~BadOption() = default;

Options ParseOptions(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (SetFlag(options, argument)) {
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        if (!TakesValue(name)) {
            throw BadOption("unknown option '" + argument + "'; see --help");
        }
        if (equals != std::string::npos) {
            SetValue(options, name, argument.substr(equals + 1));
        } else if (++i < arguments.size()) {
            SetValue(options, name, arguments[i]);
        } else {
            throw BadOption(name + " needs a value");
        }
    }
    return options;
}

} // namespace TavoSimulator
} // namespace Brenmoor
