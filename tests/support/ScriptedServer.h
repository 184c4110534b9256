#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// One thing that a ScriptedServer does on a connection.
struct Step {
    enum class Kind {
        ReadHead,
        ReadRequest,
        Send,
        Flood,
        Pause,
        PauseUntil,
        Hold,
        Stall,
        HalfClose,
        Reset
    };

    Kind kind;
    std::string bytes = {};
    std::chrono::milliseconds time = {};
};

/// Reads up to the empty line behind the request's header lines, and not the body.
Step ReadHead();
/// Reads the whole request, or what ReadHead() has left of it: header lines and a body of the given
/// length or in chunks.
Step ReadRequest();
/// Sends the bytes as they are.
Step Send(std::string bytes);
/// Sends the bytes again and again, until the client has closed the connection.
Step Flood(std::string bytes);
/// Waits for that long, or until the server is destroyed.
Step Pause(std::chrono::milliseconds time);
/// Waits until that long after the server was constructed, or until it is destroyed.
Step PauseUntil(std::chrono::milliseconds time);
/// Waits for the server's Release(), or until it is destroyed.
Step Hold();
/// Does nothing until the client closes the connection or the server is destroyed.
Step Stall();
/// Ends the server's sending side; the connection stays open for reading.
Step HalfClose();
/// Ends the connection with a reset instead of an orderly close.
Step Reset();

/// What the server does on one connection. Behind its last step the connection is closed.
using Script = std::vector<Step>;

/// Reads a request and sends the bytes.
Script Reply(const std::string& bytes);

/// A well-formed reply with status 200 and that body.
std::string OkReply(const std::string& body);

/// A raw-byte HTTP server on a free port of the loopback interface: it plays a script on each
/// connection and keeps the exact bytes that it read. It listens when it is constructed; its
/// destructor ends every connection and joins every thread.
class ScriptedServer {
public:
    /// The first connection plays the first script, and so on; the last one is played for all
    /// further connections.
    explicit ScriptedServer(std::vector<Script> scripts);
    explicit ScriptedServer(const Script& script);
    /// Sends that reply to every request.
    explicit ScriptedServer(const std::string& reply);
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;
    ~ScriptedServer();

    /// "127.0.0.1:" and the port.
    std::string Address() const;

    /// The bytes read on each connection so far, in the order in which they were accepted.
    std::vector<std::string> Requests() const;

    /// The bytes read on the one connection there was. Fails the test if there was another number.
    std::string OnlyRequest() const;

    /// Blocks until that many connections have been accepted.
    void WaitForConnections(std::size_t count);

    /// Lets every Hold() end.
    void Release();

private:
    void Accept();
    void Play(int connection, const Script& script, std::size_t index);
    bool Do(const Step& step, int connection, std::size_t index);
    bool Read(int connection, std::size_t index, bool withBody);
    bool SendAll(int connection, const std::string& bytes);
    bool WaitUntil(int descriptor, short events, int timeoutMs) const;

    const std::vector<Script> scripts;
    const std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
    int listener;
    int stop[2];
    int release[2];
    unsigned short port;
    mutable std::mutex mutex;
    std::condition_variable accepted;
    std::vector<std::string> requests;
    std::vector<std::thread> players;
    std::thread acceptor;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
