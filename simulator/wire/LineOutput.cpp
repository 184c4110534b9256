#include "LineOutput.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoSimulator {

LineOutput::LineOutput(int theDescriptor, std::chrono::milliseconds thePatience)
    : descriptor(theDescriptor), patience(thePatience) {}

bool LineOutput::AwaitReader() {
    pollfd polled{descriptor, POLLOUT, 0};
    int ready = 0;
    do {
        ready = poll(&polled, 1, isRead ? static_cast<int>(patience.count()) : 0);
    } while (ready < 0 && errno == EINTR);
    isRead = ready != 0;
    return isRead;
}

bool LineOutput::Flush() {
    while (!rest.empty()) {
        if (!AwaitReader()) {
            return false;
        }
        // A pipe that takes anything takes this much without waiting.
        const std::size_t most = std::min<std::size_t>(rest.size(), PIPE_BUF);
        const ssize_t count = write(descriptor, rest.data(), most);
        if (count < 0) {
            rest.clear(); // nobody will ever read it
            return true;
        }
        rest.erase(0, static_cast<std::size_t>(count));
    }
    return true;
}

void LineOutput::Write(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!Flush()) {
        ++leftOut;
        return;
    }
    TellLeftOut();
    rest += line + "\n";
    Flush();
}

void LineOutput::Finish(const std::string& text, const std::function<bool()>& givesUp) {
    const std::lock_guard<std::mutex> lock(mutex);
    TellLeftOut();
    rest += text;
    isRead = true;
    while (!Flush() && !givesUp()) {
    }
}

void LineOutput::TellLeftOut() {
    if (leftOut > 0) {
        rest += "(lines left out, since nobody read them: " + std::to_string(leftOut) + ")\n";
        leftOut = 0;
    }
}

} // namespace TavoSimulator
} // namespace Brenmoor
