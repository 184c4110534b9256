#pragma once

#include "model/World.h"

#include <mutex>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// A file to which every exchange of a world is appended as it ends, on a line like those of the
/// control interface's journal: whole lines or none. When one cannot be written, this is said once
/// on standard error.
class JournalFile {
public:
    /// To be made before the first exchange, and to outlive the last. Throws a std::runtime_error
    /// when the file cannot be opened, or ends in the middle of a line.
    JournalFile(const std::string& name, World& world);
    JournalFile(const JournalFile&) = delete;
    JournalFile& operator=(const JournalFile&) = delete;
    ~JournalFile();

    /// Whether something is missing in it.
    bool Failed() const;

private:
    void Append(const std::string& line);

    const std::string name;
    mutable std::mutex mutex;
    int descriptor = -1;
    bool failed = false;
};

} // namespace TavoSimulator
} // namespace Brenmoor
