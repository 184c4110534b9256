// Calls the client so often, while one reply in seventeen goes wrong, and writes a line of comma-
// separated figures for each two hundredth of the calls. Fails unless what the process holds is the
// same to the end; see scripts/soak.

#include "Caller.h"
#include "FaultyServer.h"
#include "Holdings.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <curl/curl.h>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

namespace {

constexpr unsigned long samples = 200;
/// Arenas, the C library's and libcurl's own tables: all are there after a twentieth.
constexpr unsigned long warmUp = samples / 20;

bool Expect(bool good, const std::string& what) {
    if (!good) {
        std::cout << "soak: WRONG: " << what << std::endl;
    }
    return good;
}

bool IsFlat(const std::vector<Holdings>& all) {
    const Holdings& first = all.at(warmUp);
    std::size_t heapBefore = 0;
    bool flat = true;
    for (std::size_t i = 0; i < all.size() && flat; ++i) {
        if (i <= warmUp) {
            heapBefore = std::max(heapBefore, all[i].heapBytes);
            continue;
        }
        const std::string at = " after " + std::to_string(i + 1) + "/" + std::to_string(samples);
        flat = Expect(all[i].descriptors == first.descriptors, "descriptors are left" + at) &&
               Expect(all[i].threads == 1, "threads are left" + at) &&
               Expect(all[i].temporaryFiles == 0, "temporary files are left" + at) &&
               Expect(all[i].heapBytes <= heapBefore, "memory is lost" + at);
    }
    return flat;
}

bool HaveExpectedOutcomes(const Caller& caller) {
    const bool none = Expect(caller.Unexplained() == 0, std::to_string(caller.Unexplained()) +
                                                            " calls failed without a fault");
    const bool some = Expect(caller.Failures() > 0, "no fault made a call fail");
    const bool even =
        Expect(caller.PairsMet() == std::min<unsigned long>(caller.Struck(), caller.Pairs()),
               "the same faults struck the same operations again");
    return none && some && even;
}

int Run(unsigned long calls, unsigned threads, const std::string& folder, const std::string& left) {
    const FaultyServer server;
    curl_global_init(CURL_GLOBAL_ALL);
    const std::string temporary = folder + "/tmp";
    std::filesystem::create_directory(temporary);
    setenv("TMPDIR", temporary.c_str(), 1);
    Caller caller(server.Address(), folder, left);
    std::ofstream table(folder + "/soak.csv");
    table << "calls,seconds,failures,descriptors,threads,temporary_files,heap_bytes,resident_kib\n";
    std::vector<Holdings> all;
    all.reserve(samples);
    const auto begin = std::chrono::steady_clock::now();
    for (unsigned long i = 1; i <= samples; ++i) {
        caller.Call(calls / samples, threads);
        all.push_back(Look(temporary));
        const Holdings& now = all.back();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        table << i * (calls / samples) << ',' << seconds.count() << ',' << caller.Failures() << ','
              << now.descriptors << ',' << now.threads << ',' << now.temporaryFiles << ','
              << now.heapBytes << ',' << now.residentKibibytes << std::endl;
    }
    std::cout << "soak: " << calls / samples * samples << " calls by " << threads << " threads, "
              << caller.Struck() << " with a fault, of which " << caller.Failures() << " threw; "
              << caller.PairsMet() << " of " << caller.Pairs() << " pairs of operation and fault\n"
              << std::flush;
    const bool isFlat = IsFlat(all);
    const bool areExpected = HaveExpectedOutcomes(caller);
    return isFlat && areExpected ? 0 : 1;
}

} // namespace

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor

// Usage: tavo_soak CALLS THREADS FOLDER [memory|descriptor|thread|file]
int main(int count, char** arguments) {
    if (count < 4 || std::stoul(arguments[1]) < 1000) {
        std::cerr << "usage: tavo_soak CALLS THREADS FOLDER [memory|descriptor|thread|file]\n"
                     "at least 1000 calls\n";
        return 2;
    }
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return Brenmoor::TavoRemotingLib::Soak::Run(std::stoul(arguments[1]),
                                                    static_cast<unsigned>(std::stoul(arguments[2])),
                                                    arguments[3], count > 4 ? arguments[4] : "");
    } catch (const std::exception& e) {
        std::cerr << "tavo_soak: " << e.what() << std::endl;
        return 1;
    }
}
