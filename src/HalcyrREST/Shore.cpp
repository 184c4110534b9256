#include "HalcyrREST/EncodeURL.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <boost/filesystem/operations.hpp>

namespace Brenmoor {
namespace TavoRemotingLib {

void HalcyrREST::SendRawPacketToShore(const std::string& id,
                                      const MirrinFramework::ByteArray& packet) {
    Upload(Address("rawpacket", id), packet.ToASCIIString(), false, "Send Raw Packet to Shore");
}

void HalcyrREST::SendRawPacketToShore(const std::string& id, const std::string& packet) {
    SendRawPacketToShore(id, MirrinFramework::ByteArray(packet.data(), packet.size()));
}

// Only the legacy operation looks for the file first, deliberately: hosts of the current one know
// the transfer's error.
void HalcyrREST::SendFileToShoreLegacy(const std::string& id, const std::string& fileName,
                                       const std::string& remote) {
    if (!boost::filesystem::exists(fileName)) {
        throw std::invalid_argument("SendFileToShoreLegacy: filename (" + fileName +
                                    ") does not exist");
    }
    SendFile("uploadlegacy", id, fileName, remote, "Send File to Shore Legacy");
}

void HalcyrREST::SendFileToShore(const std::string& id, const std::string& fileName,
                                 const std::string& remote) {
    SendFile("upload", id, fileName, remote, "Send File to Shore");
}

void HalcyrREST::SendFile(const char* operation, const std::string& id, const std::string& fileName,
                          const std::string& remote, const std::string& label) const {
    std::string address = Address(operation, id);
    if (!remote.empty()) {
        AppendEncoded(address += "&remote=", remote);
    }
    Upload(address, fileName, true, label);
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
