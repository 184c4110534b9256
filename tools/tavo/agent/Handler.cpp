#include "agent/Handler.h"

#include "agent/TimeLimit.h"
#include "core/Failure.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Brenmoor {
namespace Tavo {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds longestWait(500);

class Descriptor {
public:
    explicit Descriptor(int theNumber) : number(theNumber) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        Close();
    }

    void Close() {
        if (number >= 0) {
            close(number);
        }
        number = -1;
    }

    int number;
};

/// A file without a name that holds the text, to be read from its begin.
int InputFile(const std::string& text) {
    const int file = memfd_create("tavo-handler-input", MFD_CLOEXEC);
    std::size_t written = 0;
    while (file >= 0 && written < text.size()) {
        const ssize_t count = write(file, text.data() + written, text.size() - written);
        if (count < 0) {
            const int error = errno;
            close(file);
            throw FileError("write", "the handler's input", error);
        }
        written += static_cast<std::size_t>(count);
    }
    if (file < 0) {
        throw FileError("make", "the handler's input", errno);
    }
    lseek(file, 0, SEEK_SET);
    return file;
}

/// The agent's environment with additions, in the shape that a new program takes it.
std::vector<std::string>
Environment(const std::vector<std::pair<std::string, std::string>>& additions) {
    std::vector<std::string> all;
    all.reserve(additions.size());
    for (const auto& [name, value] : additions) {
        // A value ends at its first zero byte, as every text of the environment does.
        all.push_back(name + "=" + value.substr(0, value.find('\0')));
    }
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string name(*entry, std::strcspn(*entry, "="));
        bool isNew = true;
        for (const auto& addition : additions) {
            isNew = isNew && addition.first != name;
        }
        if (isNew) {
            all.emplace_back(*entry);
        }
    }
    return all;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// A program that runs, and the pipe from it.
class Running {
public:
    Running(const HandlerCall& call, const Signals& theSignals) : Running(theSignals) {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw FileError("make", "a pipe", errno);
        }
        output.number = ends[0];
        Descriptor writing(ends[1]);
        fcntl(output.number, F_SETFL, O_NONBLOCK);
        const Descriptor input(InputFile(call.input));
        Spawn(call, input.number, writing.number);
        signals.Tell(id);
        limit.emplace(id, call.longest);
    }

    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    ~Running() {
        limit.reset();
        if (id > 0) {
            SignalGroup(id, SIGKILL); // it, and whatever it left behind
            signals.Tell(0);
            waitpid(id, nullptr, 0);
        }
    }

    void End() {
        limit->EndNow();
    }

    /// Whether it has been told to end, since it took too long or by End.
    bool IsEnding() const {
        return limit->HasStruck();
    }

    /// How it ended, once it has.
    std::optional<siginfo_t> Status() const {
        return StatusOf(id);
    }

    /// Appends what can be read at once, but no more than `most` bytes in all. Returns how many
    /// bytes were dropped.
    std::size_t Read(std::string& text, std::size_t most) {
        std::array<char, 65536> bytes{};
        std::size_t dropped = 0;
        // Bounded, so that a flood does not keep the time limit from being looked at.
        for (int i = 0; i < 16; ++i) {
            const ssize_t count = read(output.number, bytes.data(), bytes.size());
            if (count == 0) {
                output.Close();
            }
            if (count <= 0) {
                break;
            }
            const std::size_t room = most - std::min(most, text.size());
            const std::size_t kept = std::min(room, static_cast<std::size_t>(count));
            text.append(bytes.data(), kept);
            dropped += static_cast<std::size_t>(count) - kept;
        }
        return dropped;
    }

    int Output() const {
        return output.number;
    }

private:
    explicit Running(const Signals& theSignals) : signals(theSignals) {}

    void Spawn(const HandlerCall& call, int input, int writing) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, writing, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, writing, STDERR_FILENO);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE); // ignored by the agent itself
        posix_spawnattr_setsigdefault(&attributes, &defaults);
        std::vector<std::string> words = call.words;
        std::vector<std::string> environment = Environment(call.environment);
        const int error = posix_spawnp(&id, words.front().c_str(), &actions, &attributes,
                                       Pointers(words).data(), Pointers(environment).data());
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            id = -1;
            throw FileError("run", words.front(), error);
        }
    }

    const Signals& signals;
    pid_t id = -1;
    Descriptor output{-1};
    std::optional<TimeLimit> limit;
};

std::string HowItFailed(const siginfo_t& end) {
    if (end.si_code != CLD_EXITED) {
        return "ended by signal " + std::to_string(end.si_status);
    }
    return end.si_status == 0 ? "" : "exit code " + std::to_string(end.si_status);
}

void AddLine(std::string& text, const std::string& line) {
    if (!line.empty()) {
        text += (text.empty() || text.back() == '\n' ? "" : "\n") + ("[" + line + "]");
    }
}

} // namespace

HandlerResult RunHandler(const HandlerCall& call, const Signals& signals) {
    HandlerResult result;
    Running program(call, signals);
    bool isStopped = false;
    auto nextProgress = Clock::now() + call.between;
    std::size_t given = 0;
    std::size_t dropped = 0;
    const auto read = [&] {
        dropped += program.Read(result.output, call.mostOutput - std::min(given, call.mostOutput));
    };
    while (!program.Status()) {
        if (!isStopped && signals.StopRequested() && !program.IsEnding()) {
            isStopped = true;
            program.End();
        }
        call.alive();
        const bool tells = call.between.count() > 0 && !isStopped && !program.IsEnding();
        if (tells && Clock::now() >= nextProgress) {
            // What was not taken is told again, or is in the answer.
            if (call.progress(result.output)) {
                given += result.output.size();
                result.output.clear();
            }
            nextProgress = Clock::now() + call.between;
        }
        const auto untilProgress = std::chrono::ceil<milliseconds>(nextProgress - Clock::now());
        signals.Wait(program.Output(), tells ? std::min(untilProgress, longestWait) : longestWait);
        read();
    }
    read();
    std::string why = HowItFailed(*program.Status());
    if (program.IsEnding()) {
        why = isStopped ? "interrupted: the agent was stopped"
                        : "took longer than " + std::to_string(call.longest.count() / 1000) + " s";
    }
    result.succeeded = why.empty();
    AddLine(result.output,
            dropped == 0 ? "" : std::to_string(dropped) + " bytes more were dropped");
    AddLine(result.output, why);
    return result;
}

} // namespace Tavo
} // namespace Brenmoor
