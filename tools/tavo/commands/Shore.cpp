#include "commands/Commands.h"
#include "commands/Content.h"
#include "core/Failure.h"
#include "core/Session.h"
#include "core/Text.h"

#include <memory>

namespace Brenmoor {
namespace Tavo {

namespace {

struct PacketOptions {
    std::optional<std::string> text;
    bool hex = false;
};

struct FileOptions {
    std::string file;
    std::string remote;
    bool legacy = false;
};

Json::Value Size(std::uint64_t bytes) {
    return static_cast<Json::UInt64>(bytes);
}

void SendPacket(Session& session, const PacketOptions& options) {
    const std::string& id = session.Id();
    auto& client = session.Client();
    std::string packet = options.text.has_value() ? *options.text : StandardInput();
    if (options.hex) {
        packet = BytesOfHex(packet);
    }
    session.Transfer([&] { client.SendRawPacketToShore(id, packet); });
    Json::Value result;
    result["id"] = id;
    result["bytes"] = Size(packet.size());
    session.output.Result(Escaped(id) + ": sent a packet of " + Bytes(packet.size()) + "\n",
                          result);
}

/// Sends a file by one of the client's operations, and tells what was sent.
template <typename Send>
void SendWhole(Session& session, const std::string& file, Json::Value result, const Send& send) {
    const std::string& id = session.Id();
    auto& client = session.Client();
    const Load load = LoadOf(file);
    // What libcurl would take for standard input.
    const std::string path = file == "-" ? "./-" : file;
    session.Transfer([&] { send(client, id, path); }, load);
    result["id"] = id;
    result["file"] = file;
    result["bytes"] = load.size.has_value() ? Size(*load.size) : Json::Value();
    const std::string size = load.size.has_value() ? ", " + Bytes(*load.size) : "";
    session.output.Result(Escaped(id + ": sent '" + file + "'") + size + "\n", result);
}

void SendFile(Session& session, const FileOptions& options) {
    using TavoRemotingLib::HalcyrREST;
    Json::Value result;
    result["remote"] = options.remote.empty() ? Json::Value() : Json::Value(options.remote);
    SendWhole(session, options.file, result,
              [&](HalcyrREST& client, const std::string& id, const std::string& file) {
                  if (options.legacy) {
                      client.SendFileToShoreLegacy(id, file, options.remote);
                  } else {
                      client.SendFileToShore(id, file, options.remote);
                  }
              });
}

Parameter FileArgument(const char* text, std::string& target) {
    Parameter argument{"FILE", "", text, &target};
    argument.isRequired = true;
    argument.isFile = true;
    return argument;
}

} // namespace

Command SendPacketCommand() {
    const auto options = std::make_shared<PacketOptions>();
    Command command;
    command.name = "send-packet";
    command.summary = "hand a packet over for relay to shore";
    command.details = {"A packet may hold any bytes. They come from TEXT or, without it, from "
                       "standard input, as they are: echo adds a line end, printf does not."};
    command.arguments = {{"TEXT", "", "the packet", &options->text}};
    command.options = {{"--hex", "", "read pairs of hexadecimal digits", &options->hex}};
    command.examples = {
        {"A text", "tavo send-packet 'all is well' --id P1"},
        {"Four bytes", "tavo send-packet --hex '00 01 FE FF' --id P1"},
        {"What a program writes", "./measure | tavo send-packet --id P1"},
    };
    command.run = [options](Session& session) {
        SendPacket(session, *options);
    };
    return command;
}

Command SendFileCommand() {
    const auto options = std::make_shared<FileOptions>();
    Command command;
    command.name = "send-file";
    command.summary = "hand a file over for relay to shore";
    command.details = {"On a terminal, a transfer of more than a second shows its time, size and "
                       "rate."};
    command.arguments = {FileArgument("the file", options->file)};
    command.options = {
        {"--remote", "NAME", "what it is called on shore", &options->remote},
        {"--legacy", "", "use the older operation, for servers that lack the newer one",
         &options->legacy},
    };
    command.examples = {
        {"A file, under a name of its own on shore",
         "tavo send-file survey.bin --remote 'survey/day one.bin' --id P1"},
        {"To an older server", "tavo send-file survey.bin --legacy --id P1"},
    };
    command.run = [options](Session& session) {
        SendFile(session, *options);
    };
    return command;
}

Command InstallJarCommand() {
    const auto file = std::make_shared<std::string>();
    Command command;
    command.name = "install-jar";
    command.summary = "hand a JAR file over for installation on the vehicle";
    command.arguments = {FileArgument("the JAR file", *file)};
    command.examples = {{"Install a payload's driver", "tavo install-jar ctd-driver.jar --id P1"}};
    command.run = [file](Session& session) {
        SendWhole(session, *file, Json::Value(),
                  [](auto& client, const std::string& id, const std::string& path) {
                      client.InstallJar(id, path);
                  });
    };
    return command;
}

} // namespace Tavo
} // namespace Brenmoor
