#include "Load.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Load {

namespace {

std::string Folder(pid_t process) {
    return "/proc/" + std::to_string(process);
}

long ResidentKibibytes(pid_t process) {
    std::ifstream status(Folder(process) + "/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") {
            long kibibytes = 0;
            status >> kibibytes;
            return kibibytes;
        }
    }
    return -1;
}

long Descriptors(pid_t process) {
    const std::filesystem::directory_iterator begin(Folder(process) + "/fd");
    return static_cast<long>(std::distance(begin, std::filesystem::directory_iterator()));
}

} // namespace

Watch::Watch(pid_t theProcess)
    : process(theProcess), residentBefore(ResidentKibibytes(process)),
      descriptorsBefore(Descriptors(process)) {}

bool Watch::Check(const std::string& title, long mostKibibytes) const {
    // A connection whose client has gone is closed a moment later.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (Descriptors(process) > descriptorsBefore && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    const long resident = ResidentKibibytes(process);
    const long descriptors = Descriptors(process);
    std::cout << title << ": resident memory " << residentBefore << " KiB before, " << resident
              << " KiB after; descriptors " << descriptorsBefore << " before, " << descriptors
              << " after\n";
    const bool flat = Expect(resident > 0 && resident - residentBefore <= mostKibibytes,
                             "the simulator's memory grew");
    return Expect(descriptors <= descriptorsBefore, "the simulator left descriptors open") && flat;
}

bool Expect(bool good, const std::string& what) {
    if (!good) {
        std::cout << "FAILED: " << what << '\n';
    }
    return good;
}

} // namespace Load
} // namespace TavoSimulator
} // namespace Brenmoor
