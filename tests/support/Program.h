#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// The words that start a program of this build: its path, and the emulator before it in a cross
/// build.
std::vector<std::string> CommandOf(const std::string& path);

/// The words that start one with these arguments and a shell's redirections, as ">&-".
std::vector<std::string> Redirected(const std::string& redirections, const std::string& path,
                                    const std::vector<std::string>& arguments);

/// Starts a program with these variables and these standard streams, of which -1 is the test's own.
/// Its first word is looked for in PATH unless it is a path. Returns its process id.
pid_t Spawn(std::vector<std::string> words, std::vector<std::string> variables,
            const int (&streams)[3]);

/// The variables of the test's own environment.
std::vector<std::string> Environment();

/// A program that runs. What it writes is read through pipes.
class Program {
public:
    /// Starts it; the first word is looked for in PATH unless it is a path.
    explicit Program(std::vector<std::string> words);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    /// Kills a program that still runs.
    ~Program();

    /// The next line of its standard output, without the line end; empty at its end.
    std::string ReadLine();
    void Signal(int number) const;
    /// Waits for its end and returns its exit code, or minus the signal that ended it.
    int Wait();
    /// All the rest of standard output, and all of standard error. For use after Wait().
    std::string RestOfOutput();
    std::string Errors();

private:
    pid_t id = 0;
    int output = -1;
    int errors = -1;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
