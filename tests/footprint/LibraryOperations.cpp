#include "LibraryClient.h"
#include "Operation.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

namespace {

struct Client : private SilentLogger, public HalcyrREST {
    explicit Client(const Call& call) : HalcyrREST(call.server, *this, false) {}
};

} // namespace

std::vector<Operation> Gets() {
    return {
        {"Poll", true, &Poll},
        {"TurnPayloadOff", true,
         [](const Call& call) {
             Client(call).TurnPayloadOff(call.id);
         }},
        {"SetPayloadKELDSwitch", true,
         [](const Call& call) {
             Client(call).SetPayloadKELDSwitch(call.id, true);
         }},
        {"SetPayloadKELDSwitch,named", true,
         [](const Call& call) {
             Client(call).SetPayloadKELDSwitch(call.id, "pump 2", true);
         }},
        {"RunScript", true,
         [](const Call& call) {
             Client(call).RunScript(call.id, "df -h");
         }},
        {"RegistrationComplete", true,
         [](const Call& call) {
             Client(call).RegistrationComplete(call.id);
         }},
        {"DelayShutdown", true,
         [](const Call& call) {
             Client(call).DelayShutdown(call.id, 60);
         }},
    };
}

std::vector<Operation> Uploads() {
    return {
        {"InstallJar", true,
         [](const Call& call) {
             Client(call).InstallJar(call.id, call.file);
         }},
        {"RespondToCommand", true,
         [](const Call& call) {
             Client(call).RespondToCommand(call.id, "t 1", "ok", false, false);
         }},
        {"SendRawPacketToShore", true,
         [](const Call& call) {
             Client(call).SendRawPacketToShore(call.id, MirrinFramework::ByteArray("\0\1\2", 3));
         }},
        {"SendRawPacketToShore,text", true,
         [](const Call& call) {
             Client(call).SendRawPacketToShore(call.id, "packet");
         }},
        {"SendFileToShoreLegacy", true,
         [](const Call& call) {
             Client(call).SendFileToShoreLegacy(call.id, call.file, "a b");
         }},
        {"SendFileToShore", true,
         [](const Call& call) {
             Client(call).SendFileToShore(call.id, call.file, "a b");
         }},
        {"RegisterPayload", true,
         [](const Call& call) {
             Client(call).RegisterPayload(call.id, call.file, HalcyrREST::PayloadRegistration(),
                                          "host");
         }},
        {"RegisterPayloadWithContent", true,
         [](const Call& call) {
             Client(call).RegisterPayloadWithContent(call.id, "{\"tag\": \"t\"}", "host");
         }},
    };
}

std::vector<Operation> Documents() {
    return {
        {"GetPayloadRegistrationContent", false,
         [](const Call& call) {
             Client(call).GetPayloadRegistrationContent(call.file,
                                                        HalcyrREST::PayloadRegistration());
         }},
        {"EncodeURL", false,
         [](const Call&) {
             HalcyrREST::EncodeURL("pump 2");
         }},
        {"PayloadRegistration", false,
         [](const Call& call) {
             HalcyrREST::PayloadRegistration record(call.file);
         }},
        {"PRInterface", false,
         [](const Call& call) {
             HalcyrREST::PRInterface record;
             record.InitFromRegJSON(call.document);
             record.UpdateJSON(call.document);
         }},
        {"PRHardware", false,
         [](const Call& call) {
             std::vector<HalcyrREST::PRHardware> list;
             HalcyrREST::PRHardware::InitFromRegJSON(call.document, list);
             HalcyrREST::PRHardware::UpdateJSON(call.document, list);
         }},
    };
}

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
