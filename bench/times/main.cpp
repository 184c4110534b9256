// Takes the time of every client's subjects, in the same run and in mixed order; and of starting
// programs that are linked with the library or with what it stands on.
// Usage: bench_times [--benchmark_...]... FILE SERVER

#include "Subjects.h"

#include <benchmark/benchmark.h>
#include <exception>
#include <iostream>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

using namespace Brenmoor::TavoRemotingLib::Bench;

namespace {

/// From this size on a single run is long enough to be timed.
constexpr std::size_t largeBody = 50000000;

void Time(benchmark::State& state, const std::function<void()>& run) {
    for (auto _ : state) {
        run();
    }
}

void Register(const std::string& name, bool isLong, const std::function<void()>& run) {
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the registry owns it
    benchmark::internal::Benchmark* const registered =
        benchmark::RegisterBenchmark(name.c_str(), &Time, run);
    registered->UseRealTime();
    if (isLong) {
        registered->Iterations(1);
    }
}

void Start(const std::string& program) {
    char* const arguments[] = {const_cast<char*>(program.c_str()), nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, arguments[0], nullptr, nullptr, arguments, nullptr) != 0 ||
        waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("cannot run " + program);
    }
}

void RegisterAll(const std::string& self, const std::string& file, const std::string& server) {
    for (const char* const client :
         {"library", "bare", "file", "contract", "curlpp", "poco", "httplib", "beast"}) {
        for (const Subject& subject : Subjects(client, server, file, {})) {
            Register(subject.name + "/" + client, subject.body > largeBody, subject.run);
        }
    }
    const std::string folder = self.substr(0, self.rfind('/') + 1);
    for (const char* const client : {"library", "bare"}) {
        Register(std::string("load/") + client, false,
                 [program = folder + "bench_load_" + client] { Start(program); });
    }
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 3) {
        std::cerr << "usage: bench_times [--benchmark_...]... FILE SERVER" << std::endl;
        return 2;
    }
    try {
        RegisterAll(argv[0], argv[1], argv[2]);
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& e) {
        std::cerr << "bench_times: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
