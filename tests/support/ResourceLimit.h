#pragma once

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Sets the soft limit of one of the process's resources, RLIMIT_..., while it lives. Programs that
/// are started meanwhile keep it.
class ResourceLimit {
public:
    ResourceLimit(__rlimit_resource theResource, rlim_t limit) : resource(theResource) {
        getrlimit(resource, &before);
        const rlimit changed = {limit, before.rlim_max};
        EXPECT_EQ(setrlimit(resource, &changed), 0);
    }
    ResourceLimit(const ResourceLimit&) = delete;
    ResourceLimit& operator=(const ResourceLimit&) = delete;
    ~ResourceLimit() {
        setrlimit(resource, &before);
    }

private:
    const __rlimit_resource resource;
    rlimit before = {};
};

/// Ignores a signal, which programs that are started meanwhile do as well, while it lives.
class IgnoredSignal {
public:
    explicit IgnoredSignal(int theNumber)
        : number(theNumber), before(std::signal(theNumber, SIG_IGN)) {}
    IgnoredSignal(const IgnoredSignal&) = delete;
    IgnoredSignal& operator=(const IgnoredSignal&) = delete;
    ~IgnoredSignal() {
        std::signal(number, before);
    }

private:
    const int number;
    void (*const before)(int);
};

/// Fails each write beyond that many bytes of a file, as a full disk does, while it lives.
class SmallFiles {
public:
    explicit SmallFiles(rlim_t bytes) : limit(RLIMIT_FSIZE, bytes) {}

private:
    const IgnoredSignal ignored{SIGXFSZ};
    const ResourceLimit limit;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
