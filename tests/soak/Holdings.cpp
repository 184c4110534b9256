#include "Holdings.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <thread>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

namespace {

long Entries(const std::string& folder) {
    const std::filesystem::directory_iterator begin(folder);
    return static_cast<long>(std::distance(begin, std::filesystem::directory_iterator()));
}

/// A joined thread is listed until the system has cleaned up behind it; one that stays uses the
/// patience up, for this and all later looks.
long Threads() {
    static int patience = 100000;
    long threads = Entries("/proc/self/task");
    for (; threads > 1 && patience > 0; --patience) {
        std::this_thread::yield();
        threads = Entries("/proc/self/task");
    }
    return threads;
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
    holdings.threads = Threads();
    holdings.temporaryFiles = Entries(temporaryFolder);
    holdings.residentKibibytes = ResidentKibibytes();
    return holdings;
}

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
