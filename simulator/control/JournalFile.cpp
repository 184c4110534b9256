#include "JournalFile.h"
#include "TrafficView.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <stdexcept>
#include <unistd.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr mode_t readableByAll = 0644;

bool EndsInMidLine(int descriptor) {
    const off_t size = lseek(descriptor, 0, SEEK_END);
    char last = '\n';
    return size > 0 && pread(descriptor, &last, 1, size - 1) == 1 && last != '\n';
}

} // namespace

JournalFile::JournalFile(const std::string& theName, World& world)
    : name(theName),
      descriptor(open(name.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, readableByAll)) {
    if (descriptor < 0) {
        throw std::runtime_error("cannot open the journal '" + name + "': " + strerror(errno));
    }
    if (EndsInMidLine(descriptor)) {
        close(descriptor);
        throw std::runtime_error("the journal '" + name + "' ends in the middle of a line");
    }
    world.traffic.WhenEnded([this, &world](const TrafficEntry& entry) {
        Append(JournalLine(world.clock, entry) + "\n");
    });
}

JournalFile::~JournalFile() {
    close(descriptor);
}

bool JournalFile::Failed() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return failed;
}

void JournalFile::Append(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    const off_t before = lseek(descriptor, 0, SEEK_END);
    const ssize_t written = write(descriptor, line.data(), line.size());
    if (written == static_cast<ssize_t>(line.size())) {
        return;
    }
    const char* const reason = written < 0 ? strerror(errno) : "not all of a line";
    const bool isLineBroken = written > 0 && ftruncate(descriptor, before) != 0;
    if (!failed) {
        std::cerr << "tavo-simulator: the journal '" + name + "' cannot be written: " + reason +
                         (isLineBroken ? ", and ends in the middle of a line" : "") + "\n";
    }
    failed = true;
}

} // namespace TavoSimulator
} // namespace Brenmoor
