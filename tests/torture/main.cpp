// Fails each call that can fail, one after the other; see scripts/torture.

#include "Subjects.h"
#include "Trial.h"
#include "support/ReplyServer.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <curl/curl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sys/prctl.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

namespace {

/// How often a run is made anew that ended before the call which it was to fail.
constexpr int maxAttempts = 20;

/// How often a transfer waits and reads depends on how fast the server's bytes come.
constexpr int goodRuns = 10;

/// How often more a failure is made to find out whether memory is lost each time.
constexpr int repetitions = 4;

/// Of each subject, no more failures are shown.
constexpr long maxTold = 20;

/// A stream that needs no memory.
class Discard : private std::streambuf, public std::ostream {
public:
    Discard() : std::ostream(static_cast<std::streambuf*>(this)) {}

private:
    int overflow(int character) override {
        return character;
    }
    std::streamsize xsputn(const char*, std::streamsize size) override {
        return size;
    }
};

/// Starts a server that sends that body, in a process of its own, and returns its address.
std::string Serve(const std::string& body) {
    int made[2] = {-1, -1};
    if (pipe(made) != 0) {
        throw std::runtime_error("pipe");
    }
    if (fork() == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // It gives a connection up on which no more of the request comes, as servers do.
        Testing::ReplyServer server(2);
        server.Serve("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                     "\r\n\r\n" + body);
        const std::string address = server.Address() + "\n";
        while (write(made[1], address.data(), address.size()) > 0) {
            pause(); // until the parent ends
        }
        _exit(1);
    }
    close(made[1]);
    std::string address;
    char character = 0;
    while (read(made[0], &character, 1) == 1 && character != '\n') {
        address += character;
    }
    close(made[0]);
    return address;
}

struct Sum {
    long points = 0;
    long exceptions = 0;
    long wrong = 0;
    long early = 0;
};

class Torturer {
public:
    Torturer(const std::string& workFolder, unsigned limit)
        : logger(sink, 8), file(workFolder + "/registration.json"),
          document(
              R"({"tag":"a longer tag","interface":[{"pn":"1","swver":"a longer version"}],)"
              R"("hardware":[{"manufacturer":"a maker of things","power":12,"tty":"/dev/ttyS0"},)"
              R"({"model":"another model of things"}],"boardAddress":1})"),
          limitSeconds(limit) {
        std::ofstream(file) << document;
    }

    /// Fails every call of it. False when something was wrong.
    bool Torture(const Subject& subject) {
        const std::string server = subject.replyBody.empty() ? "" : ServerOf(subject.replyBody);
        HalcyrREST client(server, logger, false);
        const Surroundings with = {client, server, file, document, logger, limitSeconds};
        Trial good = Good(subject, with);
        FindLeak(subject, with, {-1, false}, good);
        Sum sum;
        if (*good.wrong != '\0' || *good.exception != '\0') {
            Tell(subject, good, {-1, false}, sum);
        }
        for (const bool andLater : {false, true}) {
            for (long number = 0;; ++number) {
                const bool isFailed = Fail(subject, with, good, {number, andLater}, sum);
                if (!isFailed && number >= good.calls) {
                    break;
                }
                sum.early += isFailed ? 0 : 1;
            }
        }
        std::cout << "torture: " << subject.name << ": " << good.calls << " calls (" << good.byName
                  << "); " << sum.points << " points failed: " << sum.exceptions << " exceptions, "
                  << sum.points - sum.exceptions << " successes, " << sum.wrong << " wrong, "
                  << sum.early << " not reached" << std::endl;
        total.points += sum.points;
        total.wrong += sum.wrong;
        total.early += sum.early;
        return sum.wrong == 0;
    }

    const Sum& Total() const {
        return total;
    }

private:
    /// A run without a failure; of several, one with the fewest calls.
    static Trial Good(const Subject& subject, const Surroundings& with) {
        Trial good = Try(subject, with, {-1, false});
        for (int i = 0; i < goodRuns; ++i) {
            const Trial another = Try(subject, with, {-1, false});
            good = another.calls < good.calls ? another : good;
        }
        return good;
    }

    /// False when the run ends before it comes to that call.
    bool Fail(const Subject& subject, const Surroundings& with, const Trial& good,
              const Failure& failure, Sum& sum) {
        const bool isExpected = failure.number < good.calls;
        for (int attempt = 0; attempt < (isExpected ? maxAttempts : 1); ++attempt) {
            Trial trial = Try(subject, with, failure);
            if (*trial.wrong == '\0' && trial.blocks != good.blocks) {
                FindLeak(subject, with, failure, trial);
            }
            if (*trial.wrong != '\0') {
                Tell(subject, trial, failure, sum);
            }
            if (*trial.failed != '\0' || (*trial.wrong != '\0' && isExpected)) {
                ++sum.points;
                sum.exceptions += *trial.exception != '\0' ? 1 : 0;
                return true;
            }
        }
        return false;
    }

    /// More memory in use than after a good run is a leak when it grows with each failure. (A way
    /// that libcurl takes after a failure only may set up something for good, such as a thread.)
    static void FindLeak(const Subject& subject, const Surroundings& with, const Failure& failure,
                         Trial& trial) {
        const Trial more = Try(subject, with, failure, 1 + repetitions);
        const long lost = more.blocks - trial.blocks;
        if (*more.wrong != '\0' || lost > 0) {
            trial = more;
            if (*more.wrong == '\0') {
                const std::string text = std::to_string(lost) + " blocks of memory are lost in " +
                                         std::to_string(repetitions) + " further runs";
                text.copy(trial.wrong, sizeof trial.wrong - 1);
            }
        }
    }

    static void Tell(const Subject& subject, const Trial& trial, const Failure& failure, Sum& sum) {
        if (++sum.wrong > maxTold) {
            return;
        }
        std::cout << "torture: WRONG: " << subject.name << ", call " << failure.number
                  << (failure.andLater ? " and all later" : "") << " failed (" << trial.failed
                  << ", then " << trial.exception << "): " << trial.wrong << std::endl;
    }

    std::string ServerOf(const std::string& body) {
        std::string& address = servers[body];
        if (address.empty()) {
            address = Serve(body);
        }
        return address;
    }

    Discard sink;
    MirrinFramework::Logger logger;
    const std::string file;
    const std::string document;
    const unsigned limitSeconds;
    std::map<std::string, std::string> servers;
    Sum total;
};

/// Once before anything is counted.
void Prepare(const std::string& tempFolder) {
    static char buffer[4096];
    std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    setenv("TMPDIR", tempFolder.c_str(), 1);
    // As a host does.
    curl_global_init(CURL_GLOBAL_DEFAULT);
    std::signal(SIGPIPE, SIG_IGN);
}

int Main(const std::string& work, std::size_t part, std::size_t parts, bool isSelfTest) {
    std::filesystem::create_directories(work + "/tmp");
    Prepare(work + "/tmp");
    // A run that takes longer hangs, also on a slow machine.
    Torturer torturer(work, isSelfTest ? 2 : 30);
    const std::vector<Subject> subjects = isSelfTest ? FaultySubjects() : Subjects();
    std::size_t found = 0;
    for (std::size_t i = part; i < subjects.size(); i += parts) {
        found += torturer.Torture(subjects[i]) ? 0U : 1U;
    }
    const Sum& total = torturer.Total();
    std::cout << "torture: " << total.points << " points failed, " << total.wrong << " wrong, "
              << total.early << " not reached" << std::endl;
    if (isSelfTest) {
        return found == subjects.size() ? 0 : 1;
    }
    return total.wrong == 0 && total.early == 0 ? 0 : 1;
}

} // namespace

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::cerr << "usage: " << argv[0] << " WORK_FOLDER --self-test | WORK_FOLDER PART PARTS"
                  << std::endl;
        return 2;
    }
    const bool isSelfTest = argc == 3;
    const std::size_t part = isSelfTest ? 0 : std::stoul(argv[2]);
    const std::size_t parts = isSelfTest ? 1 : std::stoul(argv[3]);
    return Brenmoor::TavoRemotingLib::Torture::Main(argv[1], part, parts, isSelfTest);
}
