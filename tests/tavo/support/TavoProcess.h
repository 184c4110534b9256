#pragma once

#include <iosfwd>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

/// How the program is called.
struct Call {
    std::vector<std::string> arguments;
    std::vector<std::string> environment = {}; ///< "NAME=value"; none of tavo's own is inherited
    std::string input = {};                    ///< all that standard input has
    bool terminalOut = false; ///< standard output is a pseudo-terminal, else a pipe
    bool terminalErr = false; ///< likewise standard error
};

/// What it left.
struct Outcome {
    int code; ///< the exit code, or minus the signal that ended it
    std::string out;
    std::string err;
};

bool operator==(const Outcome& one, const Outcome& other);
void PrintTo(const Outcome& outcome, std::ostream* stream);

/// tavo as a process.
class TavoProcess {
public:
    explicit TavoProcess(const Call& call);
    TavoProcess(const TavoProcess&) = delete;
    TavoProcess& operator=(const TavoProcess&) = delete;
    /// Kills a program that still runs.
    ~TavoProcess();

    /// Returns when standard output, or standard error, has had this text or is at its end.
    void AwaitOutput(const std::string& text);
    void AwaitErrors(const std::string& text);
    void Signal(int number) const;
    /// Gives it all its input, reads all its output, and waits for its end.
    Outcome Finish();

private:
    /// One of its standard streams, seen from the other end.
    struct Stream {
        int descriptor = -1;
        std::string text;
    };

    bool Step();
    void Feed();
    static void Read(Stream& stream);

    pid_t id = 0;
    Stream input;
    Stream output;
    Stream errors;
};

/// Runs it to its end.
Outcome RunTavo(const Call& call);
Outcome RunTavo(const std::vector<std::string>& arguments);

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
