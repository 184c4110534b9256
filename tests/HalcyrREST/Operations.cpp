#include "HalcyrREST/Operations.h"

#include <MirrinFramework/ByteArray.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using String = std::string;

std::vector<Operation> Gets() {
    return {
        {"TurnPayloadOff", "Turn Payload Off", "off", "", false,
         [](HalcyrREST& client, const String& id, const String&) {
             client.TurnPayloadOff(id);
         }},
        {"SetNamedSwitch", "Set Payload KELD Switch", "pwr", "&sw=s&cmd=on", false,
         [](HalcyrREST& client, const String& id, const String&) {
             client.SetPayloadKELDSwitch(id, "s", true);
         }},
        {"SetOwnSwitch", "Set Payload KELD Switch", "pwr", "&cmd=off", false,
         [](HalcyrREST& client, const String& id, const String&) {
             client.SetPayloadKELDSwitch(id, false);
         }},
        {"RunScript", "Run Script", "script", "&cmd=c", false,
         [](HalcyrREST& client, const String& id, const String&) {
             client.RunScript(id, "c");
         }},
        {"RegistrationComplete", "Registration complete", "metadone", "", false,
         [](HalcyrREST& client, const String& id, const String&) {
             client.RegistrationComplete(id);
         }},
        {"DelayShutdown", "Poll", "offdelay", "&delay=5&setdefault=0", false,
         [](HalcyrREST& client, const String& id, const String&) {
             client.DelayShutdown(id, 5);
         }},
        // This poll time gives the limit that the other operations have.
        {"Poll", "Poll", "poll", "&format=2&shutdown=true&maxcommands=0&timeout=240000", false,
         [](HalcyrREST& client, const String& id, const String&) {
             std::vector<String> ids = {id};
             HalcyrREST::ShutdownInfo shutdown;
             client.Poll(ids, nullptr, nullptr, &shutdown, 240000, 1);
         }},
    };
}

std::vector<Operation> Uploads() {
    return {
        {"InstallJar", "Install JAR", "jar", "", true,
         [](HalcyrREST& client, const String& id, const String& file) {
             client.InstallJar(id, file);
         }},
        {"RespondToCommand", "Respond to Command", "reply", "&tag=t", true,
         [](HalcyrREST& client, const String& id, const String&) {
             client.RespondToCommand(id, "t", "response of " + id, true, true);
         }},
        {"SendRawPacketBytes", "Send Raw Packet to Shore", "rawpacket", "", true,
         [](HalcyrREST& client, const String& id, const String&) {
             client.SendRawPacketToShore(id, MirrinFramework::ByteArray(id.data(), id.size()));
         }},
        {"SendRawPacketText", "Send Raw Packet to Shore", "rawpacket", "", true,
         [](HalcyrREST& client, const String& id, const String&) {
             client.SendRawPacketToShore(id, "packet of " + id);
         }},
        {"SendFileToShoreLegacy", "Send File to Shore Legacy", "uploadlegacy", "&remote=r", true,
         [](HalcyrREST& client, const String& id, const String& file) {
             client.SendFileToShoreLegacy(id, file, "r");
         }},
        {"SendFileToShore", "Send File to Shore", "upload", "&remote=r", true,
         [](HalcyrREST& client, const String& id, const String& file) {
             client.SendFileToShore(id, file, "r");
         }},
        {"RegisterPayload", "Payload Registration", "meta", "&hostid=h", true,
         [](HalcyrREST& client, const String& id, const String& file) {
             HalcyrREST::PayloadRegistration registration;
             registration.tag = id;
             client.RegisterPayload(id, file, registration, "h");
         }},
        {"RegisterPayloadWithContent", "Payload Registration", "meta", "&hostid=h", true,
         [](HalcyrREST& client, const String& id, const String&) {
             client.RegisterPayloadWithContent(id, "{\"tag\":\"" + id + "\"}", "h");
         }},
    };
}

} // namespace

std::vector<Operation> Operations() {
    std::vector<Operation> all = Gets();
    const std::vector<Operation> uploads = Uploads();
    all.insert(all.end(), uploads.begin(), uploads.end());
    return all;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
