#include "ScriptRun.h"
#include "wire/EscapedText.h"
#include "wire/Refusal.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using RealClock = std::chrono::steady_clock;

/// How often to look at what is not announced.
constexpr int glanceMilliseconds = 10;
constexpr int firstInheritable = 3;

std::vector<std::string> Words(const std::string& command) {
    constexpr char blanks[] = " \t";
    std::vector<std::string> words;
    std::size_t begin = command.find_first_not_of(blanks);
    while (begin != std::string::npos) {
        const std::size_t end = command.find_first_of(blanks, begin);
        words.push_back(command.substr(begin, end - begin));
        begin = command.find_first_not_of(blanks, end);
    }
    return words;
}

/// The file that a first word names.
std::string AllowedFile(const std::string& folder, const std::string& word) {
    const std::string path = folder + "/" + word;
    std::error_code ignored;
    if (word.find('/') != std::string::npos || !std::filesystem::is_regular_file(path, ignored) ||
        access(path.c_str(), X_OK) != 0) {
        throw Forbidden("There is no script '" + Escape(word) + "' that may be run");
    }
    return path;
}

Refusal CannotStart(int error) {
    return Refusal(500, "Internal Server Error",
                   std::string("The script cannot be started: ") + strerror(error));
}

/// The end of a pipe, to be read without waiting.
class Output {
public:
    Output() {
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw CannotStart(errno);
        }
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() {
        CloseWriter();
        close(ends[0]);
    }

    int Writer() const {
        return ends[1];
    }

    void CloseWriter() {
        if (ends[1] >= 0) {
            close(std::exchange(ends[1], -1));
        }
    }

    /// Waits a little for something to read.
    void Await() const {
        pollfd reader{ends[0], POLLIN, 0};
        // At the end of the output there is nothing to wait for but the script's own end.
        if (ended || poll(&reader, 1, glanceMilliseconds) < 0) {
            poll(nullptr, 0, glanceMilliseconds);
        }
    }

    /// Adds what is there, until there is more than `most`.
    void Read(std::string& text, std::size_t most) {
        std::vector<char> piece(std::size_t{64} * 1024);
        while (text.size() <= most) {
            const ssize_t count = read(ends[0], piece.data(), piece.size());
            ended = count == 0;
            if (count <= 0) {
                return;
            }
            text.append(piece.data(), static_cast<std::size_t>(count));
        }
    }

private:
    int ends[2] = {-1, -1};
    bool ended = false;
};

/// A process that leads a group of its own.
class Leader {
public:
    Leader(const std::string& path, const std::string& folder, std::vector<std::string> words,
           int output) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions, firstInheritable);
        posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        // The server blocks and ignores signals, which is not for its children to inherit.
        sigset_t none;
        sigemptyset(&none);
        sigset_t ignored;
        sigemptyset(&ignored);
        sigaddset(&ignored, SIGPIPE);
        sigaddset(&ignored, SIGXFSZ);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &ignored);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                  POSIX_SPAWN_SETSIGDEF);
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        const int error =
            posix_spawn(&id, path.c_str(), &actions, &attributes, arguments.data(), environ);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            throw CannotStart(error);
        }
    }
    Leader(const Leader&) = delete;
    Leader& operator=(const Leader&) = delete;
    ~Leader() {
        End();
    }

    /// Whether it has ended. It stays a zombie, which keeps its number from being used again.
    bool HasEnded() const {
        siginfo_t info{};
        return waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               info.si_pid == id;
    }

    /// Kills the group, unless that is done, and returns the leader's exit status, if it has one.
    std::optional<int> End() {
        if (id == 0) {
            return std::nullopt;
        }
        kill(-id, SIGKILL);
        int status = 0;
        while (waitpid(id, &status, 0) < 0 && errno == EINTR) {
        }
        id = 0;
        return WIFEXITED(status) ? std::optional<int>(WEXITSTATUS(status)) : std::nullopt;
    }

private:
    pid_t id = 0;
};

std::string Number(double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

} // namespace

ScriptRun RunScriptIn(const std::string& relativeFolder, const std::string& command,
                      const ScriptLimits& limits, const std::function<bool()>& closing) {
    const std::string folder = std::filesystem::absolute(relativeFolder).string();
    const std::vector<std::string> words = Words(command);
    if (words.empty() || command.find('\0') != std::string::npos) {
        throw BadRequest("The command has no words, or a zero byte");
    }
    Output output;
    Leader leader(AllowedFile(folder, words.front()), folder, words, output.Writer());
    output.CloseWriter();
    const auto end = RealClock::now() + std::chrono::duration<double>(limits.seconds);
    ScriptRun run;
    bool hasEnded = false;
    while (!hasEnded && run.killed.empty()) {
        output.Await();
        // Asked first, so that what was written before the end is read behind it.
        hasEnded = leader.HasEnded();
        output.Read(run.output, limits.bytes);
        if (run.output.size() > limits.bytes) {
            run.killed = "more than " + std::to_string(limits.bytes) + " bytes of output";
            run.output.resize(limits.bytes);
        } else if (!hasEnded && RealClock::now() >= end) {
            run.killed = "more than " + Number(limits.seconds) + " seconds";
        } else if (!hasEnded && closing()) {
            run.killed = "the server is going down";
        }
    }
    run.exitStatus = leader.End();
    return run;
}

} // namespace TavoSimulator
} // namespace Brenmoor
