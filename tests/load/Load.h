#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <sys/types.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Load {

/// The simulator that is driven.
struct Target {
    std::uint16_t port = 0;
    pid_t process = 0;
    /// Simulated seconds for each real one.
    double speed = 1;
};

/// Payloads poll, by the client library, while commands are queued at random; each answers what it
/// gets. Prints figures. False when a command was lost, came twice or to another payload, or was
/// not answered, or when the simulator grew.
bool RunPolls(const Target& target, unsigned payloads, std::chrono::seconds duration);

/// Broken requests, slow clients and idle connections. Prints figures. False when a payload was not
/// answered meanwhile, or when the simulator grew.
bool RunHostile(const Target& target, unsigned requests, unsigned connections);

/// The memory and the descriptors of a process, now and before.
class Watch {
public:
    explicit Watch(pid_t process);

    /// Prints both under this title. False when the memory has grown by more than so many KiB, or
    /// there are more descriptors than before.
    bool Check(const std::string& title, long mostKibibytes) const;

private:
    const pid_t process;
    const long residentBefore;
    const long descriptorsBefore;
};

/// Says what is wrong, unless `good`, and returns it.
bool Expect(bool good, const std::string& what);

} // namespace Load
} // namespace TavoSimulator
} // namespace Brenmoor
