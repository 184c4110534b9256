#pragma once

#include "support/ResourceLimit.h"

#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Takes all descriptors below 1024 while it lives.
class LowDescriptorsTaken {
public:
    LowDescriptorsTaken() {
        int taken = -1;
        while ((taken = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0 && taken < FD_SETSIZE) {
            descriptors.push_back(taken);
        }
        close(taken);
    }
    LowDescriptorsTaken(const LowDescriptorsTaken&) = delete;
    LowDescriptorsTaken& operator=(const LowDescriptorsTaken&) = delete;
    ~LowDescriptorsTaken() {
        for (const int taken : descriptors) {
            close(taken);
        }
    }

private:
    const ResourceLimit limit{RLIMIT_NOFILE, 2048};
    std::vector<int> descriptors;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
