#include "core/Progress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <utility>

namespace Brenmoor {
namespace Tavo {

namespace {

constexpr std::chrono::seconds interval{1};

/// This process's descriptor for that file, or -1.
std::string DescriptorOf(const std::string& file) {
    std::error_code error;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd", error);
    for (const auto& entry : descriptors) {
        if (std::filesystem::equivalent(entry.path(), file, error)) {
            return entry.path().filename().string();
        }
    }
    return {};
}

} // namespace

std::string Amount(double bytes) {
    const std::array<const char*, 4> units = {"B", "kB", "MB", "GB"};
    std::size_t unit = 0;
    // What would be shown as 1000.0 goes over to the next unit.
    while (bytes >= 999.95 && unit + 1 < units.size()) {
        bytes /= 1000;
        ++unit;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), unit == 0 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
    return text.data();
}

Progress::Progress(std::string commandLabel, Load transferLoad)
    : label(std::move(commandLabel)), load(std::move(transferLoad)),
      watcher(&Progress::Watch, this) {}

Progress::~Progress() {
    Stop();
    if (shown > 0) {
        Show("");
        Show("\r");
    }
}

void Progress::Done() {
    Stop();
    if (shown > 0 && load.size.has_value()) {
        const auto bytes = static_cast<double>(*load.size);
        Show(label + ": " + Amount(bytes) + " in " + std::to_string(static_cast<long>(Elapsed())) +
             " s, " + Amount(bytes / Elapsed()) + "/s");
        Show("\n");
        shown = 0;
    }
}

void Progress::Watch() {
    std::unique_lock<std::mutex> lock(mutex);
    while (!stopped.wait_for(lock, interval, [this] { return isStopped; })) {
        Show(Line());
    }
}

void Progress::Stop() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isStopped = true;
    }
    stopped.notify_all();
    if (watcher.joinable()) {
        watcher.join();
    }
}

/// Writes over what was shown before.
void Progress::Show(const std::string& text) {
    std::string bytes = text;
    if (text != "\r" && text != "\n") {
        bytes = "\r" + text;
        bytes.append(shown > text.size() ? shown - text.size() : 0, ' ');
        shown = std::max(shown, text.size());
    }
    // A terminal that is gone is no reason to fail.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, bytes.data(), bytes.size());
}

std::string Progress::Line() const {
    const std::string line = label + ": " + std::to_string(static_cast<long>(Elapsed())) + " s";
    if (!load.size.has_value()) {
        return line;
    }
    const std::string size = Amount(static_cast<double>(*load.size));
    const std::optional<std::uint64_t> sent = Sent();
    if (!sent.has_value()) {
        return line + ", size " + size;
    }
    const auto bytes = static_cast<double>(*sent);
    return line + ", " + Amount(bytes) + " of " + size + ", " + Amount(bytes / Elapsed()) + "/s";
}

double Progress::Elapsed() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::optional<std::uint64_t> Progress::Sent() const {
    const std::string descriptor = load.file.empty() ? "" : DescriptorOf(load.file);
    std::ifstream info("/proc/self/fdinfo/" + descriptor);
    std::string name;
    std::uint64_t position = 0;
    if (!descriptor.empty() && info >> name >> position && name == "pos:") {
        return position;
    }
    return std::nullopt;
}

} // namespace Tavo
} // namespace Brenmoor
