#include "Holdings.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

namespace {

long Entries(const std::string& folder) {
    const std::filesystem::directory_iterator begin(folder);
    return static_cast<long>(std::distance(begin, std::filesystem::directory_iterator()));
}

long ResidentKibibytes() {
    std::ifstream pages("/proc/self/statm");
    long size = 0;
    long resident = 0;
    pages >> size >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

} // namespace

Holdings Look(const std::string& temporaryFolder) {
    Holdings holdings;
    // First, since to look takes memory, too.
    const struct mallinfo2 heap = mallinfo2();
    holdings.heapBytes = heap.uordblks + heap.hblkhd;
    holdings.descriptors = Entries("/proc/self/fd");
    holdings.threads = Entries("/proc/self/task");
    holdings.temporaryFiles = Entries(temporaryFolder);
    holdings.residentKibibytes = ResidentKibibytes();
    return holdings;
}

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
