#include "support/TavoProcess.h"

#include "support/Program.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <iterator>
#include <ostream>
#include <poll.h>
#include <pty.h>
#include <set>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

int Checked(int result, const char* call) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return result;
}

/// Both ends of a stream: the test's and the program's.
struct Ends {
    int ours = -1;
    int theirs = -1;
};

Ends Pipe(bool isInput) {
    int ends[2];
    Checked(pipe2(ends, O_CLOEXEC), "pipe2");
    return isInput ? Ends{ends[1], ends[0]} : Ends{ends[0], ends[1]};
}

/// A pseudo-terminal that hands bytes on as they are.
Ends Terminal() {
    termios raw = {};
    cfmakeraw(&raw);
    const winsize size = {24, 80, 0, 0};
    Ends ends;
    Checked(openpty(&ends.ours, &ends.theirs, nullptr, &raw, &size), "openpty");
    Checked(fcntl(ends.ours, F_SETFD, FD_CLOEXEC), "fcntl");
    Checked(fcntl(ends.theirs, F_SETFD, FD_CLOEXEC), "fcntl");
    return ends;
}

bool Begins(const std::string& text, const std::string& beginning) {
    return text.rfind(beginning, 0) == 0;
}

std::string NameOf(const std::string& variable) {
    return variable.substr(0, variable.find('='));
}

/// The call's own variables, and those of the test but what would change the program.
std::vector<std::string> Variables(const std::vector<std::string>& added) {
    std::vector<std::string> variables = added;
    std::set<std::string> taken = {"ALL_PROXY", "NO_COLOR"};
    std::transform(added.begin(), added.end(), std::inserter(taken, taken.end()), NameOf);
    if (taken.insert("TERM").second) {
        variables.emplace_back("TERM=xterm");
    }
    for (const std::string& variable : TavoRemotingLib::Testing::Environment()) {
        const std::string name = NameOf(variable);
        const bool isProxy = name.size() > 6 && name.find("_proxy") == name.size() - 6;
        if (!Begins(name, "TAVO_") && !isProxy && taken.count(name) == 0) {
            variables.push_back(variable);
        }
    }
    return variables;
}

} // namespace

bool operator==(const Outcome& one, const Outcome& other) {
    return one.code == other.code && one.out == other.out && one.err == other.err;
}

void PrintTo(const Outcome& outcome, std::ostream* stream) {
    *stream << "exit code " << outcome.code << "\n-- out:\n"
            << outcome.out << "\n-- err:\n"
            << outcome.err << "\n--";
}

TavoProcess::TavoProcess(const Call& call) {
    const Ends ends[] = {Pipe(true), call.terminalOut ? Terminal() : Pipe(false),
                         call.terminalErr ? Terminal() : Pipe(false)};
    input = {ends[0].ours, call.input};
    output.descriptor = ends[1].ours;
    errors.descriptor = ends[2].ours;
    Checked(fcntl(input.descriptor, F_SETFL, O_NONBLOCK), "fcntl");

    std::vector<std::string> words = TavoRemotingLib::Testing::CommandOf(TAVO_PATH);
    words.insert(words.end(), call.arguments.begin(), call.arguments.end());
    id = TavoRemotingLib::Testing::Spawn(words, Variables(call.environment),
                                         {ends[0].theirs, ends[1].theirs, ends[2].theirs});
    for (const Ends& pair : ends) {
        close(pair.theirs);
    }
}

TavoProcess::~TavoProcess() {
    if (id != 0) {
        Signal(SIGKILL);
        waitpid(id, nullptr, 0);
    }
    for (const Stream* const stream : {&input, &output, &errors}) {
        if (stream->descriptor >= 0) {
            close(stream->descriptor);
        }
    }
}

void TavoProcess::Feed() {
    const ssize_t count = write(input.descriptor, input.text.data(), input.text.size());
    if (count < 0 && errno != EAGAIN) {
        input.text.clear(); // it does not read on
    }
    input.text.erase(0, count > 0 ? static_cast<std::size_t>(count) : 0);
    if (input.text.empty()) {
        close(input.descriptor);
        input.descriptor = -1;
    }
}

void TavoProcess::Read(Stream& stream) {
    char buffer[4096];
    const ssize_t count = read(stream.descriptor, buffer, sizeof buffer);
    if (count > 0) {
        stream.text.append(buffer, static_cast<std::size_t>(count));
        return;
    }
    // The other end of a terminal is closed: an error instead of an end.
    close(stream.descriptor);
    stream.descriptor = -1;
}

/// Waits for one of the streams and serves it; false when both outputs are at their end.
bool TavoProcess::Step() {
    pollfd polled[] = {{input.descriptor, POLLOUT, 0},
                       {output.descriptor, POLLIN, 0},
                       {errors.descriptor, POLLIN, 0}};
    if (output.descriptor < 0 && errors.descriptor < 0) {
        return false;
    }
    Checked(poll(polled, 3, -1), "poll");
    if (polled[0].revents != 0) {
        Feed();
    }
    if (polled[1].revents != 0) {
        Read(output);
    }
    if (polled[2].revents != 0) {
        Read(errors);
    }
    return true;
}

void TavoProcess::AwaitOutput(const std::string& text) {
    while (output.descriptor >= 0 && output.text.find(text) == std::string::npos) {
        Step();
    }
}

void TavoProcess::AwaitErrors(const std::string& text) {
    while (errors.descriptor >= 0 && errors.text.find(text) == std::string::npos) {
        Step();
    }
}

void TavoProcess::Signal(int number) const {
    kill(id, number);
}

Outcome TavoProcess::Finish() {
    while (Step()) {
    }
    int status = 0;
    waitpid(id, &status, 0);
    id = 0;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), output.text, errors.text};
}

Outcome RunTavo(const Call& call) {
    return TavoProcess(call).Finish();
}

Outcome RunTavo(const std::vector<std::string>& arguments) {
    return RunTavo(Call{arguments});
}

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
