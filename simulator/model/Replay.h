#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// The replies of a journal, to be given once more. Every operation may be called from any thread.
class Replay {
public:
    struct Recorded {
        /// The exact bytes, status line and all.
        std::string bytes;
        /// How long they took to come.
        double seconds = 0;
        int status = 0;
        std::string reason;
        std::string fault;
    };

    /// Reads a journal. Exchanges that had not ended are left out, and what was no HTTP request.
    /// Throws a FileMistake with the line's number, also for a reply that is not whole.
    explicit Replay(std::istream& journal);

    /// The reply to the next request with this method and target: each in the order of the journal,
    /// then the last one again and again. None when there never was such a request.
    std::optional<Recorded> Next(const std::string& method, const std::string& target);

private:
    struct Replies {
        std::vector<Recorded> recorded;
        std::size_t given = 0;
    };

    void Add(const std::string& line);

    std::mutex mutex;
    std::map<std::pair<std::string, std::string>, Replies> replies;
};

} // namespace TavoSimulator
} // namespace Brenmoor
