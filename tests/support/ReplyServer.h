#pragma once

#include <mutex>
#include <string>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A server on a free port of the loopback interface that reads each request whole, sends the same
/// bytes and closes the connection.
class ReplyServer {
public:
    /// Closes a connection also when nothing comes for that many seconds; 0 waits without limit.
    explicit ReplyServer(int patienceSeconds = 0);
    ReplyServer(const ReplyServer&) = delete;
    ReplyServer& operator=(const ReplyServer&) = delete;
    ~ReplyServer();

    /// "127.0.0.1:" and the port.
    std::string Address() const;

    /// What is sent from now on.
    void Serve(const std::string& bytes);

private:
    void Run();
    void Answer(int connection);

    const int patienceSeconds;
    int listener;
    unsigned short port;
    std::mutex mutex;
    std::string reply;
    std::thread thread;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
