#include "support/Program.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

struct Pipe {
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe for the test");
        }
    }

    int ends[2] = {-1, -1};
};

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::string ReadRest(int descriptor) {
    std::string text;
    char buffer[4096];
    for (;;) {
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count <= 0) {
            return text;
        }
        text.append(buffer, static_cast<std::size_t>(count));
    }
}

} // namespace

std::vector<std::string> CommandOf(const std::string& path) {
    std::vector<std::string> words;
    std::istringstream emulator(TAVO_EMULATOR);
    for (std::string word; std::getline(emulator, word, '|');) {
        words.push_back(word);
    }
    words.push_back(path);
    return words;
}

std::vector<std::string> Redirected(const std::string& redirections, const std::string& path,
                                    const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"bash", "-c", "exec \"$@\" " + redirections, "bash"};
    for (const auto& more : {CommandOf(path), arguments}) {
        words.insert(words.end(), more.begin(), more.end());
    }
    return words;
}

std::vector<std::string> Environment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    return variables;
}

pid_t Spawn(std::vector<std::string> words, std::vector<std::string> variables,
            const int (&streams)[3]) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int number = 0; number < 3; ++number) {
        if (streams[number] >= 0) {
            posix_spawn_file_actions_adddup2(&actions, streams[number], number);
        }
    }
    pid_t id = 0;
    const int result = posix_spawnp(&id, words[0].c_str(), &actions, nullptr,
                                    Pointers(words).data(), Pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (result != 0) {
        throw std::runtime_error(words[0] + " does not start");
    }
    return id;
}

Program::Program(std::vector<std::string> words) {
    const Pipe out;
    const Pipe err;
    output = out.ends[0];
    errors = err.ends[0];
    id = Spawn(std::move(words), Environment(), {-1, out.ends[1], err.ends[1]});
    close(out.ends[1]);
    close(err.ends[1]);
}

Program::~Program() {
    if (id != 0) {
        Signal(SIGKILL);
        Wait();
    }
    close(output);
    close(errors);
}

std::string Program::ReadLine() {
    std::string line;
    char next = '\0';
    while (read(output, &next, 1) == 1 && next != '\n') {
        line += next;
    }
    return line;
}

void Program::Signal(int number) const {
    kill(id, number);
}

int Program::Wait() {
    int status = 0;
    waitpid(id, &status, 0);
    id = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::string Program::RestOfOutput() {
    return ReadRest(output);
}

std::string Program::Errors() {
    return ReadRest(errors);
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
