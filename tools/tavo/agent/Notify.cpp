#include "agent/Notify.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

void NotifyManager(const std::string& state) {
    const char* const name = std::getenv("NOTIFY_SOCKET");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name == nullptr || std::strlen(name) < 2 || std::strlen(name) >= sizeof address.sun_path) {
        return;
    }
    const std::size_t length = std::strlen(name);
    std::memcpy(address.sun_path, name, length);
    if (name[0] == '@') {
        address.sun_path[0] = '\0'; // a name that is not in the file system
    }
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor >= 0) {
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
        // A manager that does not listen is no reason to stop.
        [[maybe_unused]] const ssize_t sent =
            sendto(descriptor, state.data(), state.size(), MSG_NOSIGNAL,
                   reinterpret_cast<const sockaddr*>(&address), size);
        close(descriptor);
    }
}

} // namespace Tavo
} // namespace Brenmoor
