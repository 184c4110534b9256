#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

struct Options {
    std::uint16_t port = 8080;
    std::string address = "127.0.0.1";
    std::string dataFolder = "tavo-data";
    /// Empty for none.
    std::string portFile;
    bool quiet = false;
    bool help = false;
    bool version = false;
};

/// Says on one line what is wrong with a command line.
class BadOption : public std::runtime_error {
public:
    explicit BadOption(const std::string& line);
    ~BadOption() override;
};

/// Reads the arguments behind the program's name. A value follows its option as the next argument
/// or behind an equals sign. Throws BadOption.
Options ParseOptions(const std::vector<std::string>& arguments);

/// What --help prints.
extern const char usage[];

} // namespace TavoSimulator
} // namespace Brenmoor
