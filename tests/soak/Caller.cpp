#include "Caller.h"

#include "FaultyServer.h"
#include "faults/Fault.h"
#include "support/FaultsUntilLimit.h"

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Soak {

namespace {

/// Every operation, and a poll that asks for everything.
std::vector<Testing::Operation> AllOperations() {
    std::vector<Testing::Operation> operations = Testing::Operations();
    operations.push_back({"PollForAll", "Poll", "poll", "", false,
                          [](HalcyrREST& client, const std::string& id, const std::string&) {
                              std::vector<std::string> ids = {id, "P2"};
                              std::vector<HalcyrREST::RemoteCommand> commands;
                              HalcyrREST::GPSInfo gps;
                              HalcyrREST::ShutdownInfo shutdown;
                              client.Poll(ids, &commands, &gps, &shutdown, 240000, 10);
                          }});
    return operations;
}

std::vector<std::string> PlayedFaults() {
    std::vector<std::string> names;
    for (const TavoSimulator::Fault& fault : TavoSimulator::FaultCatalogue()) {
        if (!Testing::EndsWithTheLimit(fault.name)) {
            names.emplace_back(fault.name);
        }
    }
    return names;
}

std::string MakeFile(const std::string& path) {
    std::ofstream(path) << "{\"description\": \"" << std::string(3000, 'x') << "\"}";
    return path;
}

} // namespace

Caller::Caller(const std::string& server, const std::string& theFolder, std::string theLeft)
    : folder(theFolder), left(std::move(theLeft)), file(MakeFile(folder + "/sent.json")),
      operations(AllOperations()), faults(PlayedFaults()), met(operations.size() * faults.size()),
      client(server, logger, false) {}

void Caller::Call(unsigned long calls, unsigned threads) {
    const unsigned long end = next + calls;
    std::vector<std::thread> callers;
    for (unsigned i = 0; i < threads; ++i) {
        callers.emplace_back([this, end] {
            for (unsigned long number = next++; number < end; number = next++) {
                CallOnce(number);
            }
        });
    }
    for (std::thread& caller : callers) {
        caller.join();
    }
    next = end;
}

void Caller::CallOnce(unsigned long number) {
    const std::size_t operation = number % operations.size();
    const std::size_t fault = number / faultPeriod / operations.size() % faults.size();
    const bool isStruck = number % faultPeriod == 0;
    if (isStruck) {
        ++struck;
        met[operation * faults.size() + fault] = true;
    }
    try {
        operations[operation].call(client, isStruck ? faults[fault] : FaultyServer::healthyPayload,
                                   file);
    } catch (const std::exception&) {
        ++(isStruck ? failures : unexplained);
    }
    Leave(number);
}

std::size_t Caller::PairsMet() const {
    return static_cast<std::size_t>(std::count(met.begin(), met.end(), true));
}

void Caller::Leave(unsigned long number) const {
    if (number % 100 != 0 || left.empty()) {
        return;
    }
    if (left == "memory") {
        static std::atomic<char*> lost;
        lost = new char[100];
    } else if (left == "descriptor") {
        open("/dev/null", O_RDONLY | O_CLOEXEC);
    } else if (left == "thread") {
        std::thread(pause).detach();
    } else {
        MakeFile(folder + "/tmp/left" + std::to_string(number));
    }
}

} // namespace Soak
} // namespace TavoRemotingLib
} // namespace Brenmoor
