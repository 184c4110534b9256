#pragma once

#include "Process.h"
#include "Wire.h"

#include <csignal>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// A test with the simulator as a program, and a folder for its files.
class ProcessTest : public ::testing::Test {
protected:
    ProcessTest() {
        std::signal(SIGPIPE, SIG_IGN);
    }

    std::vector<std::string> Arguments(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{
            "--port", "0", "--data", folder.path + "/data", "--port-file", folder.path + "/port"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    /// Waits for the line that tells that the server listens, and returns its port.
    std::uint16_t AwaitPort(Process& process) const {
        const std::string line = process.ReadLine();
        const std::string port = ReadFile(folder.path + "/port");
        EXPECT_EQ(line + "\n", "tavo-simulator " TAVO_VERSION " listens on 127.0.0.1 port " +
                                   port.substr(0, port.size() - 1) + " and keeps uploads in " +
                                   folder.path + "/data\n");
        return static_cast<std::uint16_t>(std::stoi(port));
    }

    const TempFolder folder;
};

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
