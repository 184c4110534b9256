#include "Trial.h"

#include "Faults.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <cstring>
#include <cxxabi.h>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <typeinfo>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

namespace {

template <std::size_t size>
void Copy(const std::string& text, char (&to)[size]) {
    std::strncpy(to, text.c_str(), size - 1);
}

long CountEntries(const std::string& path) {
    const std::filesystem::directory_iterator entries(path);
    return std::distance(begin(entries), end(entries));
}

std::string TempFolder() {
    return std::getenv("TMPDIR");
}

std::string TypeOf(const std::exception& e) {
    int status = 0;
    char* const name = abi::__cxa_demangle(typeid(e).name(), nullptr, nullptr, &status);
    const std::string type = name;
    std::free(name);
    return type;
}

class Run {
public:
    Run(const Subject& tried, const Surroundings& surroundings, Trial& outcome)
        : subject(tried), with(surroundings), trial(outcome),
          descriptors(CountEntries("/proc/self/fd")) {}

    void WithFaults(const Failure& failure) {
        std::optional<Faults> faults;
        // Made before, so that nothing else needs memory while it is refused.
        faults.emplace(failure.number, failure.andLater);
        try {
            subject.call(with);
            faults.reset();
        } catch (const std::exception& e) {
            faults.reset();
            Copy(TypeOf(e), trial.exception);
        } catch (...) {
            faults.reset();
            Copy("something else than a std::exception was thrown", trial.wrong);
        }
        Note(LastCounted());
        CheckLeft("the run");
    }

    void Good() {
        try {
            subject.call(with);
        } catch (const std::exception& e) {
            Copy(std::string("the next call throws: ") + e.what(), trial.wrong);
        }
        CheckLeft("the next call");
    }

private:
    void Note(const Counted& counted) {
        trial.calls = counted.calls;
        std::string text;
        for (const auto& [name, number] : counted.callsByName) {
            text += (text.empty() ? "" : ", ") + name + " " + std::to_string(number);
        }
        Copy(text, trial.byName);
        Copy(counted.firstFailed, trial.failed);
        // Where unlink() fails, the file stays, and nobody can help it.
        long removed = 0;
        for (const auto& file : std::filesystem::directory_iterator(TempFolder())) {
            if (removed++ < counted.failedUnlinks) {
                std::filesystem::remove(file);
            }
        }
    }

    void CheckLeft(const std::string& who) {
        if (*trial.wrong != '\0') {
            return;
        }
        const long left = CountEntries("/proc/self/fd") - descriptors;
        const long files = CountEntries(TempFolder());
        if (left != 0) {
            Copy(who + " left " + std::to_string(left) + " descriptors", trial.wrong);
        } else if (files != 0) {
            Copy(who + " left " + std::to_string(files) + " temporary files", trial.wrong);
        }
    }

    const Subject& subject;
    const Surroundings& with;
    Trial& trial;
    const long descriptors;
};

/// libcurl takes its random numbers from OpenSSL, which sets its source up in the first upload of a
/// process. When memory fails in just that, OpenSSL 3.0 keeps refusing them, and libcurl every
/// upload.
void SetUpRandomNumbers(const std::string& server) {
    CurlUtils::PostFile("http://" + server + "/x", "name", "content", false, false, 300);
}

[[noreturn]] void TryHere(const Subject& subject, const Surroundings& with, const Failure& failure,
                          int times, Trial& trial) {
    alarm(with.limitSeconds);
    // What the library tells on standard output is nobody's here.
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
    if (!subject.replyBody.empty()) {
        SetUpRandomNumbers(with.server);
    }
    const long blocks = LiveBlocks();
    {
        Run run(subject, with, trial);
        for (int i = 0; i < times; ++i) {
            run.WithFaults(failure);
        }
        run.Good();
        run.Good();
    }
    trial.blocks = LiveBlocks() - blocks;
    _exit(0);
}

} // namespace

Trial Try(const Subject& subject, const Surroundings& with, const Failure& failure, int times) {
    static void* const shared =
        // cppcheck-suppress invalidFunctionArg ; -1 is what an anonymous mapping takes
        mmap(nullptr, sizeof(Trial), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    Trial& trial = *static_cast<Trial*>(shared);
    trial = Trial();
    const pid_t child = fork();
    if (child == 0) {
        TryHere(subject, with, failure, times, trial);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        throw std::system_error(errno, std::generic_category(), "fork or waitpid");
    }
    if (WIFSIGNALED(status)) {
        Copy(std::string("ended by the signal ") + strsignal(WTERMSIG(status)), trial.wrong);
    }
    for (const auto& file : std::filesystem::directory_iterator(TempFolder())) {
        std::filesystem::remove(file);
    }
    return trial;
}

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor
