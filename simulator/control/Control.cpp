#include "Control.h"
#include "Files.h"
#include "State.h"
#include "Steering.h"
#include "TrafficView.h"
#include "page/Page.h"

#include <Poco/Net/IPAddress.h>
#include <Poco/Net/SocketAddress.h>
#include <algorithm>
#include <iterator>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr char root[] = "/sim/v1/";

struct Target {
    const char* method;
    /// Behind the root. One that ends in a slash has more behind it.
    const char* path;
    Reply (*handler)(World& world, const Request& request);
};

constexpr Target targets[] = {
    {"GET", "state", ShowState},
    {"GET", "events", StreamEvents},
    {"POST", "commands", QueueCommand},
    {"POST", "shutdown", PlanShutdown},
    {"POST", "switches", SetSwitch},
    {"POST", "forget", ForgetPayload},
    {"POST", "vehicle", OrderVehicle},
    {"POST", "clock", SetClock},
    {"POST", "scripts", AddScript},
    {"GET", "faults", ShowFaults},
    {"POST", "faults", ArmFault},
    {"DELETE", "faults", DisarmFaults},
    {"GET", "traffic", ShowTraffic},
    {"DELETE", "traffic", ClearTraffic},
    {"GET", "traffic/", ShowBytes},
    {"GET", "journal", ShowJournal},
    {"GET", "registration", ShowRegistration},
    {"GET", "files/", FetchFile},
    {"GET", "packets/", FetchPacket},
    {"GET", "answers/", FetchAnswer},
};

bool Fits(const Target& target, const std::string& path) {
    const std::string wanted = std::string(root) + target.path;
    return wanted.back() == '/' ? path.rfind(wanted, 0) == 0 : path == wanted;
}

/// A host's name without its port.
std::string HostName(const std::string& host) {
    const std::size_t bracket = host.find(']');
    if (host.front() == '[' && bracket != std::string::npos) {
        return host.substr(1, bracket - 1);
    }
    return host.substr(0, host.find(':'));
}

bool IsOfOtherSite(const Request& request) {
    const std::string origin = request.Header("Origin");
    return !origin.empty() && origin != "http://" + request.Header("Host");
}

Refusal OtherSite() {
    return Forbidden("Requests from another site's page are refused");
}

/// A browser tells where a request comes from, and another site's page must not steer. Nor may one
/// whose own name was made to lead here, which is why only addresses and "localhost" will do.
void RequireOwnOrigin(const Request& request) {
    if (IsOfOtherSite(request)) {
        throw OtherSite();
    }
    const std::string host = request.Header("Host");
    Poco::Net::IPAddress address;
    if (!host.empty() && HostName(host) != "localhost" &&
        !Poco::Net::IPAddress::tryParse(HostName(host), address)) {
        throw Forbidden("Use the server's address, or localhost, as its name");
    }
}

} // namespace

bool IsControl(const std::string& target) {
    return target.rfind("/sim/", 0) == 0 || IsPage(target);
}

void RequireNoOtherSite(const Request& request) {
    // An image's address, say, comes without an origin.
    const std::string site = request.Header("Sec-Fetch-Site");
    if (IsOfOtherSite(request) || site == "cross-site" || site == "same-site") {
        throw OtherSite();
    }
}

bool TakesOrders(const std::string& name) {
    return std::any_of(std::begin(targets), std::end(targets), [&](const Target& target) {
        return target.method == std::string("POST") && target.path == name;
    });
}

Reply AnswerControl(World& world, const Request& request) {
    RequireOwnOrigin(request);
    if (IsPage(request.path)) {
        if (!world.settings.page) {
            throw NotFound("The page is not served, as --headless asks");
        }
        RequireMethod(request, "GET");
        return PageReply(request); // to another site's link, too
    }
    RequireNoOtherSite(request);
    std::string allow;
    for (const Target& target : targets) {
        if (!Fits(target, request.path)) {
            continue;
        }
        if (request.method == target.method) {
            return target.handler(world, request);
        }
        allow += (allow.empty() ? "" : ", ") + std::string(target.method);
    }
    if (allow.empty()) {
        throw NotFound("Nothing is steered here");
    }
    RequireMethod(request, allow);
    return Ok();
}

} // namespace TavoSimulator
} // namespace Brenmoor
