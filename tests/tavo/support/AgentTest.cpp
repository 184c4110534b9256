#include "support/AgentTest.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

void AgentTest::Start(const Lines& options, const std::string& script, const Lines& environment) {
    StartWords(options, {"/bin/sh", "-c", script, Path("ran")}, environment);
}

void AgentTest::StartWords(const Lines& options, const Lines& handler, const Lines& environment) {
    Call call;
    call.arguments = {"agent", "--server", server, "--id", "P1", "--journal", Path("journal")};
    for (const char* const name : {"--poll", "--retry-most"}) {
        if (std::count(options.begin(), options.end(), name) == 0) {
            call.arguments.insert(call.arguments.end(), {name, "1"});
        }
    }
    call.arguments.insert(call.arguments.end(), options.begin(), options.end());
    call.arguments.emplace_back("--");
    call.arguments.insert(call.arguments.end(), handler.begin(), handler.end());
    call.environment = environment;
    // A stop by _exit() leaves a thread behind, which the thread sanitizer would await and report.
    call.environment.emplace_back("TSAN_OPTIONS=report_thread_leaks=0 atexit_sleep_ms=0");
    agent = std::make_unique<TavoProcess>(call);
}

AgentTest::Lines AgentTest::AwaitAnswers(std::size_t count) const {
    Lines answers;
    while (answers.size() < count) {
        std::this_thread::yield();
        answers = simulator->Answers("P1");
    }
    return answers;
}

Outcome AgentTest::Stop() {
    agent->Signal(SIGTERM);
    return agent->Finish();
}

AgentTest::Lines AgentTest::FileLines(const std::string& name) const {
    std::ifstream file(Path(name));
    Lines lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

void AgentTest::WriteFile(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
}

std::string AgentTest::FileText(const std::string& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
