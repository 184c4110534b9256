#include "Bare.h"
#include "Operation.h"

#include <curl/curl.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

namespace {

std::string Url(const Call& call, const std::string& operation) {
    return "http://" + call.server + "/xp?op=" + operation + "&id=" + call.id;
}

std::string Rewritten(const Call& call) {
    Json::Value document = BareParse(BareRead(call.file));
    document["tag"] = call.id;
    return document.toStyledString();
}

/// What both lists of a document take: the reading and a text of each entry, and the writing.
void RewriteList(const Call& call, const char* list) {
    for (const Json::Value& entry : BareParse(call.document)[list]) {
        BareParse(entry.toStyledString());
    }
    Rewritten(call);
}

void UploadFile(const Call& call, const std::string& operation) {
    BareUpload(Url(call, operation), call.file, true);
}

} // namespace

std::vector<Operation> Gets() {
    return {
        {"Poll", false, &Poll},
        {"TurnPayloadOff", false,
         [](const Call& call) {
             BareGet(Url(call, "off"));
         }},
        {"SetPayloadKELDSwitch", false,
         [](const Call& call) {
             BareGet(Url(call, "pwr") + "&cmd=on");
         }},
        {"SetPayloadKELDSwitch,named", false,
         [](const Call& call) {
             BareGet(Url(call, "pwr") + "&sw=pump%202&cmd=on");
         }},
        {"RunScript", false,
         [](const Call& call) {
             BareGet(Url(call, "script") + "&cmd=df%20-h");
         }},
        {"RegistrationComplete", false,
         [](const Call& call) {
             BareGet(Url(call, "metadone"));
         }},
        {"DelayShutdown", false,
         [](const Call& call) {
             BareGet(Url(call, "offdelay") + "&delay=60&setdefault=0");
         }},
    };
}

std::vector<Operation> Uploads() {
    return {
        {"InstallJar", false,
         [](const Call& call) {
             UploadFile(call, "jar");
         }},
        {"RespondToCommand", false,
         [](const Call& call) {
             BareUpload(Url(call, "reply") + "&tag=t%201", "ok", false);
         }},
        {"SendRawPacketToShore", false,
         [](const Call& call) {
             BareUpload(Url(call, "rawpacket"), "packet", false);
         }},
        {"SendRawPacketToShore,text", false,
         [](const Call& call) {
             BareUpload(Url(call, "rawpacket"), "packet", false);
         }},
        {"SendFileToShoreLegacy", false,
         [](const Call& call) {
             UploadFile(call, "uploadlegacy");
         }},
        {"SendFileToShore", false,
         [](const Call& call) {
             UploadFile(call, "upload");
         }},
        {"RegisterPayload", false,
         [](const Call& call) {
             BareUpload(Url(call, "meta"), Rewritten(call), false);
         }},
        {"RegisterPayloadWithContent", false,
         [](const Call& call) {
             BareUpload(Url(call, "meta"), "\"tag\": \"t\"", false);
         }},
    };
}

std::vector<Operation> Documents() {
    return {
        {"GetPayloadRegistrationContent", false,
         [](const Call& call) {
             Rewritten(call);
         }},
        {"EncodeURL", false,
         [](const Call&) {
             curl_free(curl_easy_escape(nullptr, "pump 2", 0));
         }},
        {"PayloadRegistration", false,
         [](const Call& call) {
             BareParse(BareRead(call.file));
         }},
        {"PRInterface", false,
         [](const Call& call) {
             RewriteList(call, "interface");
         }},
        {"PRHardware", false,
         [](const Call& call) {
             RewriteList(call, "hardware");
         }},
    };
}

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
