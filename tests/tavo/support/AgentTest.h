#pragma once

#include "support/SimulatorTest.h"
#include "support/TavoProcess.h"

#include <memory>
#include <string>
#include <vector>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

/// A test in which `tavo agent` plays the payload P1. The agent's journal, position file and the
/// file in which handlers tell that they ran are in the test's folder.
class AgentTest : public SimulatorTest {
protected:
    using Lines = std::vector<std::string>;

    std::string Path(const std::string& name) const {
        return Folder() + "/" + name;
    }

    /// Starts it with these options, by default a poll's time and a longest pause of one second,
    /// and a handler that is this shell script: the one place where a shell is involved. The
    /// script's $0 is the file "ran".
    void Start(const Lines& options, const std::string& script, const Lines& environment = {});
    /// Starts it with a handler word by word.
    void StartWords(const Lines& options, const Lines& handler, const Lines& environment = {});

    void Queue(const std::string& tag, const std::string& text = "go", bool isFile = false) const {
        simulator->QueueCommand("P1", tag, text, isFile);
    }

    /// Returns when the simulator has so many answers of P1, and gives them.
    Lines AwaitAnswers(std::size_t count) const;
    /// Ends the agent by SIGTERM and returns what it left.
    Outcome Stop();

    Lines FileLines(const std::string& name) const;
    void WriteFile(const std::string& name, const std::string& content) const;
    std::string FileText(const std::string& name) const;

    std::unique_ptr<TavoProcess> agent;
};

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
