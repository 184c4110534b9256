#include "HalcyrREST/EncodeURL.h"
#include "registration/Text.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <utility>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

const char* SwitchCommand(bool on) {
    return on ? "&cmd=on" : "&cmd=off";
}

} // namespace

void HalcyrREST::TurnPayloadOff(const std::string& id) {
    Get(Address("off", id), "Turn Payload Off");
}

void HalcyrREST::SetPayloadKELDSwitch(const std::string& id, const std::string& switchName,
                                      bool on) {
    std::string address = Address("pwr", id);
    AppendEncoded(address += "&sw=", switchName);
    Switch(address += SwitchCommand(on));
}

void HalcyrREST::SetPayloadKELDSwitch(const std::string& id, bool on) {
    Switch(Address("pwr", id) += SwitchCommand(on));
}

void HalcyrREST::Switch(const std::string& address) const {
    const std::string reply = Get(std::string(address), "Set Payload KELD Switch");
    if (Trimmed(reply) != "OK") {
        throw std::runtime_error("Server operation returned '" + reply + "' for " + address);
    }
}

std::string HalcyrREST::RunScript(const std::string& id, const std::string& command) {
    std::string address = Address("script", id);
    AppendEncoded(address += "&cmd=", command);
    return Get(std::move(address), "Run Script");
}

void HalcyrREST::RegistrationComplete(const std::string& id) {
    Get(Address("metadone", id), "Registration complete");
}

void HalcyrREST::DelayShutdown(const std::string& id, long delay) {
    // The label is deliberately the poll's: a shutdown is postponed in answer to one, and hosts
    // know the messages by that name.
    Get(Address("offdelay", id) + "&delay=" + std::to_string(delay) + "&setdefault=0", "Poll");
}

void HalcyrREST::InstallJar(const std::string& id, const std::string& jarFile) {
    Upload(Address("jar", id), jarFile, true, "Install JAR");
}

void HalcyrREST::RespondToCommand(const std::string& id, const std::string& tag,
                                  const std::string& response, bool complete, bool succeeded) {
    // The id deliberately goes out as it is: it is one that the server issued. The flags are sent
    // only when false.
    std::string address = Address("reply");
    address += "&id=";
    address += id;
    AppendEncoded(address += "&tag=", tag);
    address += complete ? "" : "&complete=false";
    address += succeeded ? "" : "&succeeded=false";
    Upload(address, response, false, "Respond to Command");
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
