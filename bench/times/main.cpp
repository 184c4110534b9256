// Takes the time of every client's subjects, in the same run and in mixed order; and of starting
// programs that are linked with the library or with what it stands on.
// Usage: bench_times [--benchmark_...]... FILE SERVER

#include "Subjects.h"

#include <benchmark/benchmark.h>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <utility>

using namespace Brenmoor::TavoRemotingLib::Bench;

namespace {

/// What is timed, kept by the library's list.
class Timed : public benchmark::internal::Benchmark {
public:
    Timed(const std::string& name, std::function<void(benchmark::State&)> timing)
        : Benchmark(name.c_str()), time(std::move(timing)) {}

    void Run(benchmark::State& state) override {
        time(state);
    }

private:
    const std::function<void(benchmark::State&)> time;
};

/// The library's list owns what it is given.
benchmark::internal::Benchmark& Listed(std::unique_ptr<Timed> timed) {
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): that is not seen from here
    return *benchmark::internal::RegisterBenchmarkInternal(timed.release());
}

void Register(const std::string& name, bool isLong, const std::function<void()>& run) {
    benchmark::internal::Benchmark& listed =
        Listed(std::make_unique<Timed>(name, [run](benchmark::State& state) {
            while (state.KeepRunning()) {
                run();
            }
        }));
    listed.UseRealTime();
    if (isLong) {
        listed.Iterations(1);
    }
}

double Seconds(const timeval& time) {
    constexpr double micro = 1e-6;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * micro;
}

/// Runs the program and returns for how many seconds it had the processor.
double Start(const std::string& program) {
    char* const arguments[] = {const_cast<char*>(program.c_str()), nullptr};
    pid_t child = 0;
    int status = 0;
    rusage used = {};
    if (posix_spawn(&child, arguments[0], nullptr, nullptr, arguments, nullptr) != 0 ||
        wait4(child, &status, 0, &used) != child || status != 0) {
        throw std::runtime_error("cannot run " + program);
    }
    return Seconds(used.ru_utime) + Seconds(used.ru_stime);
}

void RegisterStart(const std::string& name, const std::string& program) {
    Listed(std::make_unique<Timed>(name, [program](benchmark::State& state) {
        while (state.KeepRunning()) {
            state.SetIterationTime(Start(program));
        }
    })).UseManualTime();
}

void RegisterAll(const std::string& self, const std::string& file, const std::string& server) {
    for (const char* const client :
         {"library", "bare", "file", "contract", "curlpp", "poco", "httplib", "beast"}) {
        for (const Subject& subject : Subjects(client, server, file, {})) {
            Register(subject.name + "/" + client, subject.body >= largeBody, subject.run);
        }
    }
    const std::string folder = self.substr(0, self.rfind('/') + 1);
    for (const char* const client : {"library", "bare"}) {
        RegisterStart(std::string("load/") + client, folder + "bench_load_" + client);
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
