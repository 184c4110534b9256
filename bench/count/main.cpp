// Runs a client's subjects so that they can be counted from outside: each once to warm up, then in
// batches. Prints each batch's name (subject:runs:bytes), with the figures of the heap behind it
// (allocations, peak, bytes copied, descriptors) when the object that counts them is loaded.
// Usage: bench_counts CLIENT FILE BATCHES SUBJECT[,SUBJECT]...|all SERVER

#include "Region.h"
#include "Subjects.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <random>
#include <sstream>

using namespace Brenmoor::TavoRemotingLib::Bench;

namespace {

/// For subjects that take long; what allocations take matters little there.
constexpr int fewBatches = 3;

int BatchesOf(const Subject& subject, int wanted) {
    if (subject.body >= largeBody) {
        return 1;
    }
    return subject.runs > 1 ? wanted : std::min(wanted, fewBatches);
}

std::vector<std::string> Split(const std::string& text) {
    std::vector<std::string> names;
    std::istringstream in(text);
    for (std::string name; std::getline(in, name, ',');) {
        names.push_back(name);
    }
    return names;
}

using Blocks = std::vector<std::unique_ptr<char[]>>;

/// What an allocation takes depends on those before it. So each batch has another heap, and they
/// are the same for every client.
void Scatter(std::minstd_rand& random, Blocks& kept) {
    Blocks dropped;
    for (int i = 0; i < 400; ++i) {
        Blocks& list = random() % 2 == 0 ? kept : dropped;
        list.push_back(std::make_unique<char[]>(16 + random() % 1000));
    }
}

void Count(const Subject& subject, int batches) {
    if (subject.body < largeBody) {
        subject.run();
    }
    const std::string name =
        subject.name + ":" + std::to_string(subject.runs) + ":" + std::to_string(subject.body);
    const int count = BatchesOf(subject, batches);
    std::minstd_rand random;
    Blocks kept;
    for (int batch = 0; batch < count; ++batch) {
        Scatter(random, kept);
        BeginRegion();
        for (unsigned run = 0; run < subject.runs; ++run) {
            subject.run();
        }
        EndRegion(name.c_str());
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 6) {
        std::cerr << "usage: bench_counts CLIENT FILE BATCHES SUBJECT[,SUBJECT]...|all SERVER"
                  << std::endl;
        return 2;
    }
    try {
        const std::string names = argv[4];
        for (const Subject& subject :
             Subjects(argv[1], argv[5], argv[2], Split(names == "all" ? "" : names))) {
            Count(subject, std::stoi(argv[3]));
        }
    } catch (const std::exception& e) {
        std::cerr << "bench_counts: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
