#include "Load.h"
#include "support/Wire.h"

#include <MirrinFramework/Logger.h>
#include <TavoRemotingLib/HalcyrREST.h>
#include <atomic>
#include <iostream>
#include <map>
#include <mutex>
#include <random>
#include <sstream>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Load {

namespace {

using Client = TavoRemotingLib::HalcyrREST;
using Real = std::chrono::steady_clock;

constexpr double pollSeconds = 2;
constexpr unsigned commandsPerSecond = 60;
// What a held poll, and a thread that serves one for the first time, may add.
constexpr long mostGrowthKibibytes = 8L * 1024;

/// What was queued, and what came of it: the commands' texts by their payloads.
class Ledger {
public:
    void Queued(const std::string& id, const std::string& text) {
        const std::lock_guard<std::mutex> lock(mutex);
        ++queued;
        outstanding[id + " " + text] = Real::now();
    }

    void Delivered(const std::string& id, const std::string& text) {
        const std::lock_guard<std::mutex> lock(mutex);
        ++delivered;
        const auto found = outstanding.find(id + " " + text);
        if (found == outstanding.end()) {
            ++unexpected;
            return;
        }
        const std::chrono::duration<double> took = Real::now() - found->second;
        longestSeconds = std::max(longestSeconds, took.count());
        outstanding.erase(found);
    }

    std::size_t Outstanding() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return outstanding.size();
    }

    /// For use when nobody else uses it any more.
    std::size_t queued = 0;
    std::size_t delivered = 0;
    std::size_t unexpected = 0;
    double longestSeconds = 0;

private:
    mutable std::mutex mutex;
    std::map<std::string, Real::time_point> outstanding;
};

class Payloads {
public:
    Payloads(const Target& theTarget, Ledger& theLedger, unsigned count)
        : target(theTarget), ledger(theLedger) {
        for (unsigned i = 0; i < count; ++i) {
            threads.emplace_back([this, i] { Poll("P" + std::to_string(i)); });
        }
    }

    void Stop() {
        stopping = true;
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    std::atomic<std::size_t> polls{0};
    std::atomic<std::size_t> failures{0};

private:
    void Poll(const std::string& id) {
        std::ostringstream log;
        MirrinFramework::Logger logger(log, 0);
        Client client("127.0.0.1:" + std::to_string(target.port), logger, false);
        std::vector<std::string> ids = {id};
        std::vector<Client::RemoteCommand> commands;
        while (!stopping) {
            try {
                ++polls;
                client.Poll(ids, &commands, nullptr, nullptr,
                            static_cast<long>(pollSeconds * 1000 * target.speed), 5);
                for (const Client::RemoteCommand& command : commands) {
                    ledger.Delivered(command.id, command.tag + " " + command.command);
                    client.RespondToCommand(command.id, command.tag, "done", true, true);
                }
            } catch (const Client::ServerTimeoutOnRequest&) {
                continue;
            } catch (const std::exception& failure) {
                ++failures;
                std::cerr << id + ": " + failure.what() + "\n";
            }
        }
    }

    const Target target;
    Ledger& ledger;
    std::atomic<bool> stopping{false};
    std::vector<std::thread> threads;
};

class Operator {
public:
    Operator(const Target& theTarget, Ledger& theLedger, unsigned thePayloads)
        : target(theTarget), ledger(theLedger), payloads(thePayloads) {}

    void Queue(std::chrono::milliseconds duration) {
        const auto begin = Real::now();
        auto next = begin;
        while (next < begin + duration) {
            const std::string id = "P" + std::to_string(numbers() % payloads);
            const std::string number = std::to_string(++lastNumber);
            // Before it is sent: it may be delivered before the answer to the order is read.
            ledger.Queued(id, "t" + number + " command " + number);
            Testing::Exchange(target.port,
                              Testing::PostText("/sim/v1/commands", "application/json",
                                                R"({"id":")" + id + R"(","tag":"t)" + number +
                                                    R"(","command":"command )" + number + R"("})"));
            next += std::chrono::microseconds(numbers() % (2 * 1000000 / commandsPerSecond));
            std::this_thread::sleep_until(next);
        }
    }

    bool AwaitAllDelivered() const {
        const auto limit = Real::now() + std::chrono::seconds(30);
        while (ledger.Outstanding() > 0 && Real::now() < limit) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return ledger.Outstanding() == 0;
    }

private:
    const Target target;
    Ledger& ledger;
    const unsigned payloads;
    std::mt19937_64 numbers{1};
    unsigned lastNumber = 0;
};

/// Exchanges of the usual size, until no more of them are remembered.
void FillTraffic(const Target& target) {
    for (int i = 0; i < 5500; ++i) {
        Testing::Exchange(target.port, Testing::UploadText("/xp?op=rawpacket&id=warm-up",
                                                           std::string(300, 'x'), "/tmp/x"));
    }
}

/// How many commands the simulator has in each state.
std::map<std::string, std::size_t> States(const Target& target) {
    std::map<std::string, std::size_t> states;
    const Json::Value state = Testing::State(target.port);
    for (const Json::Value& payload : state["payloads"]) {
        for (const Json::Value& command : payload["commands"]) {
            ++states[command["state"].asString()];
        }
    }
    return states;
}

} // namespace

bool RunPolls(const Target& target, unsigned count, std::chrono::seconds duration) {
    FillTraffic(target);
    Ledger ledger;
    Payloads payloads(target, ledger, count);
    Operator shore(target, ledger, count);
    const std::chrono::milliseconds warmUp = duration / 2;
    shore.Queue(warmUp);
    bool good = Expect(shore.AwaitAllDelivered(), "commands were not delivered in the warm-up");
    const Watch warm(target.process);
    shore.Queue(duration - warmUp);
    good = Expect(shore.AwaitAllDelivered(), "commands were not delivered") && good;
    payloads.Stop();
    std::cout << count << " payloads for " << duration.count() << " s at speed " << target.speed
              << ": " << payloads.polls << " polls, " << ledger.queued << " commands queued, "
              << ledger.delivered << " delivered; the slowest took "
              << static_cast<int>(ledger.longestSeconds * 1000) << " ms\n";
    good = warm.Check("  from the middle to the end", mostGrowthKibibytes) && good;
    const auto states = States(target);
    const std::size_t answered = states.count("answered") == 0 ? 0 : states.at("answered");
    std::cout << "  " << answered << " commands answered\n";
    good = Expect(payloads.failures == 0, "operations failed") && good;
    good = Expect(ledger.unexpected == 0, "commands came twice or to another payload") && good;
    return Expect(answered == ledger.queued && states.size() == 1, "not each was answered") && good;
}

} // namespace Load
} // namespace TavoSimulator
} // namespace Brenmoor
