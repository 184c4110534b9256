// Answers a command that takes long: some answers that say how far it is, then the one that counts.
// It knows one command, "survey N". Usage: answer_progress SERVER ID

#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Brenmoor::MirrinFramework::Logger;
using Brenmoor::TavoRemotingLib::HalcyrREST;
using Brenmoor::TavoRemotingLib::CurlUtils::CurlEasyException;

/// Says how far the work is. An answer that is lost does no harm: a later one says more. Each is an
/// exchange with the server, so one every few seconds is plenty.
void TellProgress(HalcyrREST& client, const std::string& id, const std::string& tag,
                  const std::string& text) {
    try {
        client.RespondToCommand(id, tag, text, /* complete = */ false, /* succeeded = */ true);
    } catch (const std::exception& e) {
        std::cerr << "progress lost: " << e.what() << std::endl;
    }
}

/// One try at the answer that ends a command. Returns false where the way to the server failed and
/// another try may help; the server may get the answer twice then, since the failure may have hit
/// its reply alone. What it refuses it would refuse again: that is thrown.
bool TryAnswer(HalcyrREST& client, const std::string& id, const std::string& tag,
               const std::string& text, bool succeeded) {
    try {
        client.RespondToCommand(id, tag, text, /* complete = */ true, succeeded);
        return true;
    } catch (const CurlEasyException& e) {
        std::cerr << "answer not sent: " << e.what() << std::endl;
        return false;
    }
}

void Answer(HalcyrREST& client, const std::string& id, const std::string& tag,
            const std::string& text, bool succeeded) {
    std::cout << tag << ": " << text << std::endl;
    std::chrono::milliseconds pause(500);
    for (int tries = 1; !TryAnswer(client, id, tag, text, succeeded); ++tries) {
        if (tries == 5) {
            throw std::runtime_error("no answer to '" + tag + "' came through");
        }
        std::this_thread::sleep_for(pause);
        pause *= 2;
    }
}

/// The number behind "survey ", or 0 for any other command.
int Points(const std::string& command) {
    const std::string name = "survey ";
    const std::string number =
        command.substr(0, name.size()) == name ? command.substr(name.size()) : std::string();
    const bool isNumber = !number.empty() && number.size() < 5 &&
                          number.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::stoi(number) : 0;
}

void Do(HalcyrREST& client, const std::string& id, const HalcyrREST::RemoteCommand& command) {
    const int points = Points(command.command);
    if (points == 0) {
        // A command that is not understood is answered, too: somebody waits for it.
        Answer(client, id, command.tag, "unknown command: " + command.command, false);
        return;
    }
    for (int point = 1; point < points; ++point) {
        // ... here the payload would measure ...
        TellProgress(client, id, command.tag,
                     "measured " + std::to_string(point) + " of " + std::to_string(points));
    }
    Answer(client, id, command.tag, "measured all " + std::to_string(points), true);
}

/// Does one command after the other, until the payload is told to shut down.
void Serve(HalcyrREST& client, const std::string& id) {
    std::vector<std::string> ids = {id};
    HalcyrREST::ShutdownInfo shutdown;
    while (!shutdown.requested) {
        std::vector<HalcyrREST::RemoteCommand> commands;
        try {
            client.Poll(ids, &commands, nullptr, &shutdown, /* timeoutMs = */ 60000,
                        /* maxCommands = */ 1);
        } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
            continue; // nothing happened; poll_loop.cpp shows what to do for other failures
        }
        for (const HalcyrREST::RemoteCommand& command : commands) {
            Do(client, id, command);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: answer_progress SERVER ID" << std::endl;
        return 2;
    }
    try {
        Logger logger(std::clog, 0);
        HalcyrREST client(argv[1], logger, /* verbose = */ false);
        Serve(client, argv[2]);
        client.TurnPayloadOff(argv[2]);
    } catch (const std::exception& e) {
        std::cerr << "answer_progress: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
