#pragma once

#include "support/Wire.h"

#include <MirrinFramework/Logger.h>
#include <TavoRemotingLib/HalcyrREST.h>
#include <sstream>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// A test in which the client library talks to a server in the test's own process.
class ClientTest : public ServerTest {
protected:
    using Client = TavoRemotingLib::HalcyrREST;

    /// Every byte there is, but without the zero byte, which no C string can hold.
    static std::string EveryByte() {
        std::string bytes;
        for (int byte = 1; byte < 256; ++byte) {
            bytes += static_cast<char>(byte);
        }
        return bytes;
    }

    std::string NewFile(const std::string& name, const std::string& content) const {
        const std::string path = folder.path + "/" + name;
        WriteFile(path, content);
        return path;
    }

    /// What the server keeps of a payload.
    Payload Kept(const std::string& id) const {
        Payload kept;
        world.payloads.Look([&](const PayloadRegistry::Payloads& payloads) {
            const auto found = payloads.find(id);
            if (found != payloads.end()) {
                kept = found->second;
            }
        });
        return kept;
    }

    template <typename Item>
    static std::vector<Item> Items(const History<Item>& history) {
        std::vector<Item> items;
        history.Each([&](const Item& item) {
            items.push_back(item);
            return true;
        });
        return items;
    }

    /// All flags of all exchanges, each behind its target.
    std::vector<std::string> Flags() const {
        std::vector<std::string> flags;
        for (const TrafficEntry& entry : world.traffic.Entries()) {
            for (const std::string& flag : entry.flags) {
                flags.push_back(entry.target + ": " + flag);
            }
        }
        return flags;
    }

    std::ostringstream log;
    MirrinFramework::Logger logger{log, 0};
    Client client{"127.0.0.1:" + std::to_string(server.Port()), logger, false};
};

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
