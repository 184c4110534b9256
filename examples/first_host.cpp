#include <TavoRemotingLib/HalcyrREST.h>

#include <iostream>

int main(int argc, char** argv) {
    using namespace Brenmoor;
    using TavoRemotingLib::HalcyrREST;
    if (argc != 3) {
        std::cerr << "usage: first_host SERVER ID" << std::endl;
        return 2;
    }
    MirrinFramework::Logger logger(std::clog, 0); // 7 logs uploads, 8 replies too
    HalcyrREST client(argv[1], logger, false);    // for example "127.0.0.1:8080"
    std::vector<std::string> ids = {argv[2]};
    try {
        HalcyrREST::ShutdownInfo shutdown;
        while (!shutdown.requested) {
            std::vector<HalcyrREST::RemoteCommand> commands;
            try {
                client.Poll(ids, &commands, nullptr, &shutdown, 60000, 10);
            } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
                continue; // nothing happened within the minute
            }
            for (const HalcyrREST::RemoteCommand& command : commands) {
                std::cout << "command: " << command.command << std::endl;
                client.RespondToCommand(ids[0], command.tag, "done", true, true);
            }
        }
        client.TurnPayloadOff(ids[0]);
    } catch (const std::exception& e) {
        std::cerr << e.what() << std::endl;
        return 1;
    }
    return 0;
}
