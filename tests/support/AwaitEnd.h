#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/types.h>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Whether a process with this number, or one of the group with this number, runs. One that ended
/// does not, though it may be there until its parent, maybe the init process, has noticed.
inline bool Runs(pid_t number) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ostringstream text;
        text << std::ifstream(entry.path() / "stat").rdbuf();
        const std::string status = text.str();
        // "1 (name) S 0 1 ...": the number, the name, the state, the parent, the group
        const std::size_t name = status.rfind(')');
        if (name == std::string::npos) {
            continue;
        }
        std::istringstream fields(status.substr(name + 1));
        char state = '\0';
        pid_t parent = 0;
        pid_t group = 0;
        fields >> state >> parent >> group;
        if ((group == number || status.rfind(std::to_string(number) + " ", 0) == 0) &&
            state != 'Z') {
            return true;
        }
    }
    return false;
}

inline void AwaitEnd(pid_t number) {
    while (Runs(number)) {
        std::this_thread::yield();
    }
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
