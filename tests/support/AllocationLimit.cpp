#include "support/AllocationLimit.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t refusedFrom = SIZE_MAX;

} // namespace

void* operator new(std::size_t size) {
    if (size < refusedFrom) {
        if (void* const memory = std::malloc(size > 0 ? size : 1)) {
            return memory;
        }
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

AllocationLimit::AllocationLimit(std::size_t bytes) {
    refusedFrom = bytes;
}

AllocationLimit::~AllocationLimit() {
    refusedFrom = SIZE_MAX;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
