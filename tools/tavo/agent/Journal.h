#pragma once

#include <TavoRemotingLib/HalcyrREST.h>

#include <cstdint>
#include <deque>
#include <json/value.h>
#include <string>

namespace Brenmoor {
namespace Tavo {

/// A command from its arrival to the answer that the server took.
struct Task {
    enum class State { Received, Started, Ended, Answered };

    std::uint64_t number = 0; ///< the journal's, which tells it from any other
    TavoRemotingLib::HalcyrREST::RemoteCommand command;
    State state = State::Received;
    std::string answer;
    bool succeeded = false;
    bool isRefused = false; ///< the server did not take the answer; not on disk
};

/// What became of each command, on disk before it is acted upon, so that a restart neither loses a
/// command nor runs one twice. One JSON object a line; a line cut short by a crash is left out.
class Journal {
public:
    /// Reads the file, or begins a new one. A task that was started and never ended is ended as
    /// interrupted. Throws LocalError, also when another agent has the file.
    explicit Journal(const std::string& path);
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal();

    /// Those that are not answered yet, in their order, and the last thousand that are. References
    /// stay good until Forget is called.
    std::deque<Task>& Tasks();

    /// The newest task that a command already is: the same id, tag and text. Null for a new one,
    /// and for a command without a tag, which nothing tells from another.
    Task* Find(const TavoRemotingLib::HalcyrREST::RemoteCommand& command);

    /// Adds a task, and numbers it. On disk when it returns.
    void Add(Task task);
    /// Its new state, and its answer if that is still to be sent. On disk when it returns.
    void Note(const Task& task);

    /// Drops what is answered and old; the file is written anew when it has grown.
    void Forget();

private:
    void Load();
    void Apply(const Json::Value& line);
    void Append(const std::string& text);
    void Rewrite();

    const std::string path;
    int file = -1;
    std::size_t added = 0; ///< bytes since the file was written anew
    std::uint64_t lastNumber = 0;
    std::deque<Task> tasks;
};

} // namespace Tavo
} // namespace Brenmoor
