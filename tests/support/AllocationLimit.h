#pragma once

#include <cstddef>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// While it lives, operator new throws std::bad_alloc on this thread for that many bytes and more.
class AllocationLimit {
public:
    explicit AllocationLimit(std::size_t bytes);
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
    ~AllocationLimit();
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
