#pragma once

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

/// Tells whoever counts, of the three that there are (valgrind's callgrind, the object of Heap.h,
/// the plugin of qemu), that what is to be counted begins.
void BeginRegion();

/// Tells that it ends. Callgrind writes its figures under `name`, the plugin writes them in the
/// order of the regions. Here, `name` is written on standard output, with the figures of the heap.
void EndRegion(const char* name);

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
