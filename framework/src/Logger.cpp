#include <MirrinFramework/Logger.h>

namespace Brenmoor {
namespace MirrinFramework {

Logger::Logger(std::ostream& stream, int highestLevel) : out(stream), maxLevel(highestLevel) {}

Logger::~Logger() = default;

bool Logger::IsLevelEnabled(int level) const {
    return level <= maxLevel;
}

Logger::Locked::Locked(Logger& logger) : lock(logger.mutex), out(logger.out) {}

Logger::Locked::~Locked() = default;

std::ostream* Logger::Locked::operator->() const {
    return &out;
}

std::ostream& Logger::Locked::operator*() const {
    return out;
}

} // namespace MirrinFramework
} // namespace Brenmoor
