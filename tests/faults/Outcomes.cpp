#include "Outcomes.h"

#include "support/FaultsUntilLimit.h"
#include "wire/EscapedText.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cxxabi.h>
#include <future>
#include <map>
#include <memory>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using TavoSimulator::Fault;

constexpr char id[] = "P1";
/// What the calls bring when all is well.
const std::map<std::string, std::string> healthy = {
    {"RunScript", "`12 files`"},
    {"Poll", "1 command with tag `t1` and text `go`, position 59.9 10.7"},
    {"SendFileToShore", "success"},
};
/// With it the poll has the limit that the other calls have.
constexpr long pollMs = 240000;
/// What is made of the client's limit where it alone ends the call.
constexpr long shortLimitMs = 200;

/// A simulator that stands still at one place and time.
struct Scene {
    explicit Scene(double pauseScale) : world(SettingsWith(pauseScale)) {
        TavoSimulator::VehicleOrder order;
        order.place = TavoSimulator::Place{59.9, 10.7};
        order.speedMetresPerSecond = 0;
        world.vehicle.Order(order, 0);
        world.scripts.Add({"*", "12 files"});
    }

    TavoSimulator::Settings SettingsWith(double pauseScale) const {
        TavoSimulator::Settings settings =
            TavoSimulator::Testing::SettingsIn(folder.path + "/data");
        settings.clockSpeed = 0;
        settings.startUnixSeconds = 1700000000;
        settings.pauseScale = pauseScale;
        return settings;
    }

    const TavoSimulator::Testing::TempFolder folder;
    TavoSimulator::World world;
    const TavoSimulator::Server server{world, "127.0.0.1", 0, nullptr};
};

/// The scene for a fault. Where a pause must outlast the shortened limit, it is far longer.
Scene& SceneFor(const Fault& fault) {
    if (EndsWithTheLimit(fault.name)) {
        static Scene slow(0.1);
        return slow;
    }
    static Scene quick(0.002);
    return quick;
}

std::string TypeName(const std::exception& e) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(typeid(e).name(), nullptr, nullptr, &status), std::free);
    const std::string text = name.get();
    const std::string own = "Brenmoor::TavoRemotingLib::";
    return text.rfind(own, 0) == 0 ? text.substr(own.size()) : text;
}

void Replace(std::string& text, const std::string& part, const std::string& by) {
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += by.size()) {
        text.replace(at, part.size(), by);
    }
}

/// A text for one line of the page: what is long is cut, what is no ASCII is escaped.
std::string Shown(const std::string& text) {
    constexpr std::size_t most = 60;
    const bool cut = text.size() > most;
    std::string shown = TavoSimulator::Escape(cut ? text.substr(0, most / 2) : text);
    Replace(shown, "\\x0A", "↵");
    return "`" + shown + "`" + (cut ? "… (" + std::to_string(text.size()) + " bytes)" : "");
}

void Add(std::string& list, const std::string& item) {
    list += (list.empty() ? "" : ", ") + item;
}

std::string Number(double number) {
    std::ostringstream text;
    text.precision(12);
    text << number;
    return std::isnan(number) ? "none" : text.str();
}

std::string ShownCommands(const std::vector<HalcyrREST::RemoteCommand>& commands) {
    if (commands.empty()) {
        return "";
    }
    const HalcyrREST::RemoteCommand& first = commands.front();
    const std::string kind = first.isFile ? "file" : "command";
    return std::to_string(commands.size()) +
           (commands.size() == 1 ? " " : " commands, the first a ") + kind +
           (first.id == id ? "" : " for " + Shown(first.id)) + " with tag " + Shown(first.tag) +
           " and text " + Shown(first.command);
}

std::string ShownPosition(const HalcyrREST::GPSInfo& gps) {
    return "position " + Number(gps.latitude) + " " + Number(gps.longitude) +
           (std::isnan(gps.timeFix) ? " without time" : "") +
           (gps.hasError ? ", unusable: " + Shown(gps.errorText) : "");
}

} // namespace

Victim::Victim(const Fault& theFault)
    : fault(theFault), world(SceneFor(fault).world),
      address("127.0.0.1:" + std::to_string(SceneFor(fault).server.Port())),
      client(address, logger, false) {
    if (EndsWithTheLimit(fault.name)) {
        interposer.ShortenTimeLimit(shortLimitMs);
    }
    world.payloads.Forget(id);
    world.payloads.Change(id, [](TavoSimulator::Payload& payload) {
        TavoSimulator::Command command;
        command.number = 1;
        command.tag = "t1";
        command.text = "go";
        payload.commands.Add(command, command.text.size());
    });
}

std::vector<Outcome> Victim::Outcomes() {
    // At a time, since much of theirs is waiting.
    std::future<Outcome> poll = std::async(std::launch::async, [this] {
        return Struck("poll", "Poll", "Poll", [this] { return Poll(); });
    });
    std::future<Outcome> upload = std::async(std::launch::async, [this] {
        return Struck("upload", "SendFileToShore", "Send File to Shore",
                      [this] { return SendFile(); });
    });
    std::vector<Outcome> outcomes = {
        Struck("script", "RunScript", "Run Script", [this] { return RunScript(); }), poll.get(),
        upload.get()};
    outcomes[1].text += behind;
    EXPECT_NO_THROW(client.TurnPayloadOff(id)) << "neither side is broken for good";
    EXPECT_EQ(interposer.Unreleased(), 0);
    return outcomes;
}

Outcome Victim::OutcomeOf(const Operation& operation) {
    const TavoSimulator::Testing::TempFolder folder;
    const std::string file = folder.path + "/file";
    TavoSimulator::Testing::WriteFile(file, "{}");
    return Struck(operation.operation, operation.name, operation.label, [&] {
        operation.call(client, id, file);
        return "success";
    });
}

Outcome Victim::Struck(const std::string& operation, const std::string& call,
                       const std::string& label, const std::function<std::string()>& action) {
    TavoSimulator::ArmedFault armed;
    armed.fault = fault.name;
    armed.operation = operation;
    armed.count = 1;
    const std::uint64_t number = world.faults.Arm(armed, 1).number;
    const auto isArmed = [&] {
        const std::vector<TavoSimulator::ArmedFault> all = world.faults.Armed();
        return std::any_of(all.begin(), all.end(),
                           [&](const auto& one) { return one.number == number; });
    };
    Outcome outcome{call, "", ""};
    try {
        outcome.text = action();
        const auto whenHealthy = healthy.find(call);
        if (whenHealthy == healthy.end() || outcome.text == whenHealthy->second) {
            outcome.text = "as without the fault";
        }
    } catch (const std::exception& e) {
        outcome.type = TypeName(e);
        std::string message = e.what();
        Replace(message, "For " + label + ", ", "For ⟨operation⟩, ");
        Replace(message, address, "⟨address⟩");
        Replace(message, "\n", "↵");
        outcome.text = "`" + message + "`";
    }
    // A client whose limit is short may have given up before the server came so far.
    const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (isArmed() && std::chrono::steady_clock::now() < patience) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(isArmed()) << call << " was not struck";
    return outcome;
}

std::string Victim::RunScript() {
    const std::string output = client.RunScript(id, "ls");
    return output.empty() ? "an empty text" : Shown(output);
}

std::string Victim::Poll() {
    std::vector<std::string> ids = {id};
    std::vector<HalcyrREST::RemoteCommand> commands;
    HalcyrREST::GPSInfo gps;
    HalcyrREST::ShutdownInfo shutdown;
    try {
        client.Poll(ids, &commands, &gps, &shutdown, pollMs, 10);
    } catch (...) {
        behind = commands.empty() ? "" : ", behind " + ShownCommands(commands);
        throw;
    }
    std::string seen = ShownCommands(commands);
    if (gps.received) {
        Add(seen, ShownPosition(gps));
    }
    if (shutdown.requested) {
        Add(seen, "shutdown");
    }
    return seen;
}

std::string Victim::SendFile() {
    const TavoSimulator::Testing::TempFolder folder;
    TavoSimulator::Testing::WriteFile(folder.path + "/file", std::string(5000, 'f'));
    client.SendFileToShore(id, folder.path + "/file", "remote");
    return "success";
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
