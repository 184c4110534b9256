#include "PayloadRegistry.h"
#include "wire/Refusal.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// How often a held poll looks whether the one who polls is still there.
constexpr std::chrono::duration<double> peerCheck(1.0);

} // namespace

PayloadRegistry::PayloadRegistry(const Clock& theClock, const Vehicle& theVehicle,
                                 Changes& theChanges, std::size_t theMostPayloads,
                                 double theRedeliverSeconds)
    : clock(theClock), vehicle(theVehicle), changes(theChanges), mostPayloads(theMostPayloads),
      redeliverSeconds(theRedeliverSeconds) {}

Payload& PayloadRegistry::Find(const std::string& id) {
    const auto found = payloads.find(id);
    if (found != payloads.end()) {
        return found->second;
    }
    if (payloads.size() >= mostPayloads) {
        throw Forbidden("There are " + std::to_string(mostPayloads) +
                        " payloads already, which is the most");
    }
    Payload& payload = payloads[id];
    payload.lastSeen = clock.Seconds();
    return payload;
}

void PayloadRegistry::Change(const std::string& id, const std::function<void(Payload&)>& change) {
    const std::lock_guard<std::mutex> lock(mutex);
    change(Find(id));
    changed.notify_all();
    changes.Note();
}

void PayloadRegistry::Seen(const std::string& id) {
    const std::lock_guard<std::mutex> lock(mutex);
    Find(id).lastSeen = clock.Seconds();
    changes.Note();
}

bool PayloadRegistry::Forget(const std::string& id) {
    const std::lock_guard<std::mutex> lock(mutex);
    const bool found = payloads.erase(id) > 0;
    changed.notify_all();
    changes.Note();
    return found;
}

void PayloadRegistry::Look(const std::function<void(const Payloads&)>& look) const {
    const std::lock_guard<std::mutex> lock(mutex);
    look(payloads);
}

std::uint64_t PayloadRegistry::NewNumber() {
    const std::lock_guard<std::mutex> lock(mutex);
    return ++lastNumber;
}

std::size_t PayloadRegistry::HeldPolls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return heldPolls;
}

void PayloadRegistry::Wake() {
    const std::lock_guard<std::mutex> lock(mutex);
    changed.notify_all();
    changes.Note();
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
    for (bool held = false;; held = true) {
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
        if (!held && heldPolls >= mostHeldPolls) {
            throw Refusal(503, "Service Unavailable",
                          "There are " + std::to_string(mostHeldPolls) +
                              " held polls already, which is the most");
        }
        Hold(lock, request, deadline);
    }
}

void PayloadRegistry::Hold(std::unique_lock<std::mutex>& lock, const PollRequest& request,
                           double deadline) {
    const auto each = [&](void (*change)(std::size_t&)) {
        for (const std::string& id : request.ids) {
            const auto found = payloads.find(id);
            if (found != payloads.end()) {
                change(found->second.heldPolls);
            }
        }
    };
    const double now = clock.Seconds();
    const auto longest =
        std::min(peerCheck, clock.RealTime(NextLook(request, now, deadline) - now));
    ++heldPolls;
    each([](std::size_t& held) { ++held; });
    changed.wait_for(lock, longest);
    // It may have been forgotten and met anew meanwhile.
    each([](std::size_t& held) { held -= std::min<std::size_t>(held, 1); });
    --heldPolls;
}

void PayloadRegistry::TakeCommands(const std::string& id, Payload& payload, std::size_t most,
                                   PollResult& result) const {
    const double now = clock.Seconds();
    const auto isOverdue = [&](const Command& command) {
        return redeliverSeconds > 0 && command.state == Command::State::Delivered &&
               now >= command.deliveredAt + redeliverSeconds;
    };
    payload.commands.Each([&](Command& command) {
        if (result.commands.size() >= most) {
            return false;
        }
        if (command.state == Command::State::Queued || isOverdue(command)) {
            command.state = Command::State::Delivered;
            command.deliveredAt = now;
            result.commands.push_back({id, command});
        }
        return true;
    });
}

std::optional<PollResult> PayloadRegistry::News(const PollRequest& request, double now) {
    PollResult result;
    result.end = PollResult::End::News;
    for (const std::string& id : request.ids) {
        Find(id); // before anything is taken, since one payload too many is refused
    }
    for (const std::string& id : request.ids) {
        Payload& payload = Find(id);
        payload.lastSeen = now;
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
            Find(id).lastFixTold = fix.number;
        }
    }
    changes.Note();
    return result;
}

bool PayloadRegistry::IsFixNew(const PollRequest& request, const Fix& fix) {
    const auto isNewTo = [&](const std::string& id) {
        return Find(id).lastFixTold < fix.number;
    };
    // A poll for no payload in particular has no memory: the position is always news to it.
    return request.gps &&
           (request.ids.empty() || std::any_of(request.ids.begin(), request.ids.end(), isNewTo));
}

double PayloadRegistry::NextLook(const PollRequest& request, double now, double deadline) {
    double next = deadline;
    if (request.gps) {
        next = std::min(next, vehicle.NextFixAt(now));
    }
    for (const std::string& id : request.ids) {
        const std::optional<double>& shutdownAt = Find(id).shutdownAt;
        if (request.shutdown && shutdownAt) {
            next = std::min(next, *shutdownAt);
        }
    }
    return next;
}

} // namespace TavoSimulator
} // namespace Brenmoor
