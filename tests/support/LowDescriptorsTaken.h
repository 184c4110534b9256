#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
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
        getrlimit(RLIMIT_NOFILE, &before);
        rlimit more = before;
        more.rlim_cur = 2048;
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &more), 0);
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
        setrlimit(RLIMIT_NOFILE, &before);
    }

private:
    rlimit before = {};
    std::vector<int> descriptors;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
