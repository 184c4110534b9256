#pragma once

#include "Wire.h"
#include "operations/Operations.h"

#include <sstream>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// A world without sockets, whose clock stands still until it is stepped.
class StandingWorld : public ::testing::Test {
protected:
    static Settings StandingSettings(const std::string& folder) {
        Settings settings = SettingsIn(folder);
        settings.clockSpeed = 0;
        settings.startUnixSeconds = 1000;
        return settings;
    }

    /// Has a payload's GET carried out, and returns the reply's body.
    std::string Get(const std::string& query) {
        std::istringstream none;
        return AnswerOperation(world, Request("GET", "/xp?" + query, none)).body;
    }

    /// The same for a POST with this content.
    void Upload(const std::string& query, const std::string& content,
                const std::string& fileName = "f") {
        std::istringstream form(FormText(content, fileName));
        Request request("POST", "/xp?" + query, form);
        request.headers = {{"Content-Type", "multipart/form-data; boundary=BOUNDARY"}};
        AnswerOperation(world, request);
    }

    /// Lets an exchange end without being carried out.
    void EndExchange(const std::string& operation, const std::vector<std::string>& ids = {},
                     const std::vector<std::string>& flags = {}, const std::string& fault = "") {
        TrafficEntry entry;
        entry.operation = operation;
        entry.ids = ids;
        entry.flags = flags;
        entry.fault = fault;
        entry.recording = std::make_shared<Recording>();
        const std::uint64_t number = world.traffic.Begin(entry);
        world.traffic.Change(number, [](TrafficEntry& open) { open.open = false; });
    }

    const TempFolder folder;
    World world{StandingSettings(folder.path)};
};

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
