// Threads that share one client: one polls, others do the commands meanwhile, so that a long
// command keeps nothing waiting. Usage: shared_client SERVER ID

#include <TavoRemotingLib/HalcyrREST.h>

#include <condition_variable>
#include <csignal>
#include <curl/curl.h>
#include <deque>
#include <functional>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using Brenmoor::MirrinFramework::Logger;
using Brenmoor::TavoRemotingLib::HalcyrREST;

/// Commands on their way from the thread that polls to those that do them.
class Queue {
public:
    void Push(const HalcyrREST::RemoteCommand& command) {
        const std::lock_guard<std::mutex> lock(mutex);
        commands.push_back(command);
        changed.notify_one();
    }

    /// No more will come.
    void Close() {
        const std::lock_guard<std::mutex> lock(mutex);
        closed = true;
        changed.notify_all();
    }

    /// Waits for a command; false when it is closed and empty.
    bool Pop(HalcyrREST::RemoteCommand& command) {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return closed || !commands.empty(); });
        if (commands.empty()) {
            return false;
        }
        command = commands.front();
        commands.pop_front();
        return true;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<HalcyrREST::RemoteCommand> commands;
    bool closed = false;
};

/// The threads' log is the logger that the client has: its lock keeps a line in one piece.
void Tell(Logger& logger, const std::string& line) {
    *Logger::Locked(logger) << line << std::endl;
}

/// A thread that does commands. No exception may leave it, or the program ends.
void Work(HalcyrREST& client, Logger& logger, const std::string& id, Queue& queue) {
    HalcyrREST::RemoteCommand command;
    while (queue.Pop(command)) {
        try {
            client.RespondToCommand(id, command.tag, "done: " + command.command, true, true);
            Tell(logger, "done: " + command.command);
        } catch (const std::exception& e) {
            Tell(logger, "failed: " + command.command + ": " + e.what());
        }
    }
}

/// Hands commands on until the payload is told to shut down.
void Poll(HalcyrREST& client, const std::string& id, Queue& queue) {
    std::vector<std::string> ids = {id};
    HalcyrREST::ShutdownInfo shutdown;
    while (!shutdown.requested) {
        std::vector<HalcyrREST::RemoteCommand> commands;
        try {
            client.Poll(ids, &commands, nullptr, &shutdown, /* timeoutMs = */ 60000,
                        /* maxCommands = */ 10);
        } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
            continue; // nothing happened; poll_loop.cpp shows what to do for other failures
        }
        for (const HalcyrREST::RemoteCommand& command : commands) {
            queue.Push(command);
        }
    }
}

/// Threads that work off a queue. Destroying it lets them finish what is queued and waits for them.
class Crew {
public:
    explicit Crew(Queue& work) : queue(work) {}
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    ~Crew() {
        queue.Close();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    void Add(HalcyrREST& client, Logger& logger, const std::string& id) {
        threads.emplace_back(Work, std::ref(client), std::ref(logger), id, std::ref(queue));
    }

private:
    Queue& queue;
    std::vector<std::thread> threads;
};

/// Returns when the payload is told to shut down and every command is done.
void Serve(HalcyrREST& client, Logger& logger, const std::string& id) {
    Queue queue;
    Crew crew(queue);
    for (int i = 0; i < 3; ++i) {
        crew.Add(client, logger, id);
    }
    Poll(client, id, queue);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: shared_client SERVER ID" << std::endl;
        return 2;
    }
    // Before the first thread: not every libcurl can do this by itself while threads run. And a
    // server that hangs up must not end the program.
    curl_global_init(CURL_GLOBAL_DEFAULT);
    std::signal(SIGPIPE, SIG_IGN);
    try {
        Logger logger(std::cout, 0);
        HalcyrREST client(argv[1], logger, /* verbose = */ false); // one for all threads
        Serve(client, logger, argv[2]);
        client.TurnPayloadOff(argv[2]);
    } catch (const std::exception& e) {
        std::cerr << "shared_client: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
