#include "footprint/LibraryClient.h"
#include "Clients.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <list>
#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

/// As the README's first host has it, with a log that goes nowhere.
class LibraryClient : public Client {
public:
    explicit LibraryClient(const std::string& server)
        : logger(discarded.stream, 0), client(server, logger, false) {}

    std::string RunScript(const std::string& command) override {
        return client.RunScript("P1", command);
    }
    std::size_t Poll(const std::string& id) override {
        std::vector<std::string> ids = {id};
        std::vector<HalcyrREST::RemoteCommand> commands;
        HalcyrREST::GPSInfo gps;
        HalcyrREST::ShutdownInfo shutdown;
        client.Poll(ids, &commands, &gps, &shutdown, 1000, 10000);
        return commands.size();
    }
    void UploadContent(const std::string& content) override {
        client.RespondToCommand(IdOf(content.size()), "t1", content, true, true);
    }
    void UploadFile(const std::string& fileName, std::size_t size) override {
        client.SendFileToShore(IdOf(size), fileName, "");
    }

private:
    Footprint::Discarded discarded;
    MirrinFramework::Logger logger;
    HalcyrREST client;
};

/// Costs a little more than it has to: each reply goes through a stream and a list.
class CanaryClient : public LibraryClient {
public:
    using LibraryClient::LibraryClient;

    std::string RunScript(const std::string& command) override {
        std::string reply = LibraryClient::RunScript(command);
        const std::istringstream stream(reply);
        const std::list<char> bytes(reply.begin(), reply.end());
        return reply;
    }
};

} // namespace

std::unique_ptr<Client> MakeLibraryClient(const std::string& server) {
    return std::make_unique<LibraryClient>(server);
}

std::unique_ptr<Client> MakeCanaryClient(const std::string& server) {
    return std::make_unique<CanaryClient>(server);
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
