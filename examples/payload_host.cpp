// A payload's whole job, from its registration to its end: what a host program on the payload
// computer looks like. Usage: payload_host SERVER ID REGISTRATION_FILE FILE_TO_SEND

#include <TavoRemotingLib/HalcyrREST.h>

#include <cstddef>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Brenmoor::MirrinFramework::ByteArray;
using Brenmoor::MirrinFramework::Logger;
using Brenmoor::TavoRemotingLib::HalcyrREST;

/// The library logs every GET here, uploads at level 7 and replies at level 8. A host with a log of
/// its own passes that log's stream, and decides about the levels as it likes.
class HostLogger : public Logger {
public:
    explicit HostLogger(bool verbose) : Logger(std::clog, 0), logsUploads(verbose) {}

    bool IsLevelEnabled(int level) const override {
        return level <= (logsUploads ? 7 : 0);
    }

private:
    const bool logsUploads;
};

void Tell(const std::string& line) {
    std::cout << line << std::endl;
}

/// The file describes the payload; what is only known at run time goes into the record.
void Register(HalcyrREST& client, const std::string& id, const std::string& registrationFile) {
    const HalcyrREST::PayloadRegistration registration(registrationFile);
    Tell("I register as '" + registration.tag + "' from " + registrationFile);
    client.RegisterPayload(id, registrationFile, registration, registration.hostID);
    client.RegistrationComplete(id);
}

void PowerUp(HalcyrREST& client, const std::string& id) {
    Tell("I switch on my power, my probe and my pump, and the pump off again");
    client.SetPayloadKELDSwitch(id, true);
    client.SetPayloadKELDSwitch(id, "probe", true);
    client.SetPayloadKELDSwitch(id, "pump 2", true);
    client.SetPayloadKELDSwitch(id, "pump 2", false);
}

void AnswerStatus(HalcyrREST& client, const std::string& id,
                  const HalcyrREST::RemoteCommand& command) {
    const bool known = command.command == "status";
    const std::string answer = known ? "all is well" : "unknown command: " + command.command;
    client.RespondToCommand(id, command.tag, answer, /* complete = */ true, known);
}

/// Such a command names a file instead of being the command itself.
void AnswerFile(HalcyrREST& client, const std::string& id,
                const HalcyrREST::RemoteCommand& command) {
    client.RespondToCommand(id, command.tag, "reading", /* complete = */ false, true);
    std::ifstream file(command.command, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>()};
    const bool succeeded = static_cast<bool>(file);
    const std::string answer =
        succeeded ? "read " + std::to_string(content.size()) + " bytes" : "cannot read the file";
    client.RespondToCommand(id, command.tag, answer, /* complete = */ true, succeeded);
}

void Answer(HalcyrREST& client, const std::string& id, const HalcyrREST::RemoteCommand& command) {
    Tell("I got the " + std::string(command.isFile ? "file" : "command") + " '" + command.command +
         "' and answer it under the tag \"" + command.tag + "\"");
    if (command.isFile) {
        AnswerFile(client, id, command);
    } else {
        AnswerStatus(client, id, command);
    }
}

/// Polls until this many commands are answered.
void ServeCommands(HalcyrREST& client, const std::string& id, std::size_t count) {
    std::vector<std::string> ids{id};
    for (std::size_t answered = 0; answered < count;) {
        std::vector<HalcyrREST::RemoteCommand> commands;
        HalcyrREST::GPSInfo position;
        try {
            client.Poll(ids, &commands, &position, nullptr, /* timeoutMs = */ 10000,
                        /* maxCommands = */ 1);
        } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
            continue; // nothing happened in that time: poll again
        }
        if (position.received && !position.hasError) {
            Tell("I am at " + std::to_string(position.latitude) + " " +
                 std::to_string(position.longitude));
        }
        for (const HalcyrREST::RemoteCommand& command : commands) {
            Answer(client, id, command);
            ++answered;
        }
    }
}

void RunScript(HalcyrREST& client, const std::string& id) {
    const std::string output = client.RunScript(id, "df -h /data");
    Tell("I had a script run; its output begins: " + output.substr(0, output.find('\n')));
}

void SendToShore(HalcyrREST& client, const std::string& id, const std::string& fileName) {
    const unsigned char bytes[] = {0x00, 0x01, 'T', 'a', 'v', 'o', '\\', '\n', 0x7F, 0x80, 0xFF};
    const ByteArray packet(bytes, sizeof bytes);
    Tell("I send a packet to shore:\n" + packet.ToStringSplitView());
    client.SendRawPacketToShore(id, packet);
    Tell("I send the file " + fileName + " to shore");
    client.SendFileToShore(id, fileName, "survey/day one.bin");
}

/// Asks for more time, uses it, and turns the payload off when the notice comes.
void ShutDown(HalcyrREST& client, const std::string& id) {
    Tell("I ask to be shut down two seconds later, and wait for the notice");
    client.DelayShutdown(id, 2);
    std::vector<std::string> ids{id};
    HalcyrREST::ShutdownInfo shutdown;
    while (!shutdown.requested) {
        try {
            client.Poll(ids, nullptr, nullptr, &shutdown, /* timeoutMs = */ 1000,
                        /* maxCommands = */ 0);
        } catch (const HalcyrREST::ServerTimeoutOnRequest&) {
            Tell("no notice yet");
        }
    }
    Tell("I am told to shut down, and turn myself off");
    client.SetPayloadKELDSwitch(id, "probe", false);
    client.SetPayloadKELDSwitch(id, false);
    client.TurnPayloadOff(id);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: payload_host SERVER ID REGISTRATION_FILE FILE_TO_SEND" << std::endl;
        return 2;
    }
    const std::string id = argv[2];
    try {
        HostLogger logger(/* verbose = */ false);
        HalcyrREST client(argv[1], logger, /* verbose = */ false);
        Register(client, id, argv[3]);
        PowerUp(client, id);
        ServeCommands(client, id, 2);
        RunScript(client, id);
        SendToShore(client, id, argv[4]);
        ShutDown(client, id);
    } catch (const std::exception& failure) {
        // No operation leaves anything behind when it fails, so one place is enough to say so.
        std::cerr << "payload_host: " << failure.what() << std::endl;
        return 1;
    }
    Tell("my work is done");
    return 0;
}
