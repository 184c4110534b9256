#include "PayloadRegistry.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// How often a held poll looks whether the one who polls is still there.
constexpr double peerCheckSeconds = 1.0;

void TakeCommands(const std::string& id, Payload& payload, std::size_t most, PollResult& result) {
    for (Command& command : payload.commands) {
        if (result.commands.size() >= most) {
            return;
        }
        if (command.state == Command::State::Queued) {
            command.state = Command::State::Delivered;
            result.commands.push_back({id, command});
        }
    }
}

} // namespace

PayloadRegistry::PayloadRegistry(const Clock& theClock, const Vehicle& theVehicle)
    : clock(theClock), vehicle(theVehicle) {}

void PayloadRegistry::Change(const std::string& id, const std::function<void(Payload&)>& change) {
    const std::lock_guard<std::mutex> lock(mutex);
    change(payloads[id]);
    changed.notify_all();
}

std::map<std::string, Payload> PayloadRegistry::Snapshot() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return payloads;
}

std::size_t PayloadRegistry::HeldPolls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return heldPolls;
}

void PayloadRegistry::Close() {
    const std::lock_guard<std::mutex> lock(mutex);
    closed = true;
    changed.notify_all();
}

PollResult PayloadRegistry::Poll(const PollRequest& request) {
    std::unique_lock<std::mutex> lock(mutex);
    const double deadline = clock.Seconds() + request.timeoutSeconds;
    PollResult result;
    for (;;) {
        if (closed) {
            result.end = PollResult::End::Closed;
            return result;
        }
        // News must not be lost on one who will never read it.
        if (!request.peerPresent()) {
            result.end = PollResult::End::PeerGone;
            return result;
        }
        const double now = clock.Seconds();
        if (std::optional<PollResult> news = News(request, now)) {
            return *std::move(news);
        }
        if (now >= deadline) {
            return result;
        }
        ++heldPolls;
        changed.wait_for(lock,
                         std::chrono::duration<double>(NextLook(request, now, deadline) - now));
        --heldPolls;
    }
}

std::optional<PollResult> PayloadRegistry::News(const PollRequest& request, double now) {
    PollResult result;
    result.end = PollResult::End::News;
    for (const std::string& id : request.ids) {
        const auto found = payloads.find(id);
        if (found == payloads.end()) {
            continue;
        }
        Payload& payload = found->second;
        TakeCommands(id, payload, request.maxCommands, result);
        if (request.shutdown && payload.shutdownAt && *payload.shutdownAt <= now) {
            payload.shutdownTold = true;
            result.shutdown = true;
        }
    }
    const Fix fix = vehicle.FixAt(now);
    const bool news = !result.commands.empty() || result.shutdown || IsFixNew(request, fix);
    if (!news) {
        return std::nullopt;
    }
    if (request.gps) {
        result.fix = fix;
        for (const std::string& id : request.ids) {
            lastFixTold[id] = fix.number;
        }
    }
    return result;
}

bool PayloadRegistry::IsFixNew(const PollRequest& request, const Fix& fix) const {
    const auto isNewTo = [&](const std::string& id) {
        const auto told = lastFixTold.find(id);
        return told == lastFixTold.end() || told->second < fix.number;
    };
    // A poll for no payload in particular has no memory: the position is always news to it.
    return request.gps &&
           (request.ids.empty() || std::any_of(request.ids.begin(), request.ids.end(), isNewTo));
}

double PayloadRegistry::NextLook(const PollRequest& request, double now, double deadline) const {
    double next = std::min(deadline, now + peerCheckSeconds);
    if (request.gps) {
        next = std::min(next, vehicle.TimeOfFix(vehicle.FixAt(now).number + 1));
    }
    for (const std::string& id : request.ids) {
        const auto found = payloads.find(id);
        if (request.shutdown && found != payloads.end() && found->second.shutdownAt) {
            next = std::min(next, *found->second.shutdownAt);
        }
    }
    return next;
}

} // namespace TavoSimulator
} // namespace Brenmoor
