#pragma once

#include <stdexcept>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Ends the handling of a request with an answer that is not OK and a body of one line.
class Refusal : public std::runtime_error {
public:
    Refusal(int status, const std::string& reason, const std::string& line);
    ~Refusal() override;

    int status;
    std::string reason;
    /// When not empty, the methods that the target takes.
    std::string allow;
};

/// A Refusal with "400 Bad Request".
Refusal BadRequest(const std::string& line);

/// A Refusal with "403 Forbidden".
Refusal Forbidden(const std::string& line);

/// A Refusal with "404 Not Found".
Refusal NotFound(const std::string& line);

/// A Refusal with "413 Request Entity Too Large".
Refusal TooLarge(const std::string& line);

} // namespace TavoSimulator
} // namespace Brenmoor
