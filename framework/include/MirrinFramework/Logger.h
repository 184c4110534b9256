#pragma once

#include <MirrinFramework/Export.h>

#include <mutex>
#include <ostream>

namespace Brenmoor {
namespace MirrinFramework {

/// A stream that threads share, with a level that says how much its owner wants to read.
///
/// Nothing is written through the Logger itself: a writer asks IsLevelEnabled() first if its text
/// is optional, then takes a Locked and writes to the stream behind it.
class MIRRIN_EXPORT Logger {
public:
    class Locked;

    /// Writes to `out`, which the caller owns and which must outlive the logger.
    /// Levels up to and including `maxLevel` are enabled.
    Logger(std::ostream& out, int maxLevel);
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    virtual ~Logger();

    /// True when messages of this level are wanted. A subclass may decide by other means; it is
    /// asked from any thread that uses the logger, without the lock.
    virtual bool IsLevelEnabled(int level) const;

private:
    std::ostream& out;
    const int maxLevel;
    std::recursive_mutex mutex;
};

/// Holds a logger's lock for one scope and gives its stream. A thread that already holds the lock
/// may take it again; another thread waits, without limit, until every holder is gone.
class MIRRIN_EXPORT Logger::Locked {
public:
    /// Waits for the lock. `logger` must outlive the object.
    explicit Locked(Logger& logger);
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked();

    std::ostream* operator->() const; ///< the logger's stream
    std::ostream& operator*() const;  ///< the logger's stream

private:
    std::lock_guard<std::recursive_mutex> lock;
    std::ostream& out;
};

} // namespace MirrinFramework
} // namespace Brenmoor
