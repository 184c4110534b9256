#include "Region.h"

#include "Heap.h"
#include "Marker.h"

#include <iostream>
#include <sys/syscall.h>
#include <unistd.h>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS_AT(name) static_cast<void>(name)
#endif

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

void BeginRegion() {
    if (BenchStart != nullptr) {
        BenchStart();
    }
    CALLGRIND_ZERO_STATS;
    syscall(SYS_getpriority, markerWhich, 0);
}

void EndRegion(const char* name) {
    syscall(SYS_getpriority, markerWhich, 1);
    CALLGRIND_DUMP_STATS_AT(name);
    if (BenchStop == nullptr) {
        std::cout << name << std::endl;
        return;
    }
    const BenchCounts counts = BenchStop();
    std::cout << name << " " << counts.allocations << " " << counts.peak << " " << counts.copied
              << " " << counts.descriptors << std::endl;
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
