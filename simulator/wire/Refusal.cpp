#include "Refusal.h"

namespace Brenmoor {
namespace TavoSimulator {

Refusal::Refusal(int theStatus, const std::string& theReason, const std::string& line)
    : std::runtime_error(line), status(theStatus), reason(theReason) {}

Refusal::~Refusal() = default;

Refusal BadRequest(const std::string& line) {
    return Refusal(400, "Bad Request", line);
}

Refusal Forbidden(const std::string& line) {
    return Refusal(403, "Forbidden", line);
}

Refusal NotFound(const std::string& line) {
    return Refusal(404, "Not Found", line);
}

Refusal TooLarge(const std::string& line) {
    return Refusal(413, "Request Entity Too Large", line);
}

} // namespace TavoSimulator
} // namespace Brenmoor
