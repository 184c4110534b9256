#include "support/Interposer.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

std::atomic<Interposer*> active{nullptr};

} // namespace

Interposer::Interposer() {
    active = this;
}

Interposer::~Interposer() {
    active = nullptr;
}

Interposer* Interposer::Active() {
    return active.load(std::memory_order_relaxed);
}

void Interposer::Fail(const std::string& call, int result, int nth) {
    failures[call] = {result, nth};
}

void Interposer::SkipPerform() {
    always["curl_easy_perform"] = 0;
}

void Interposer::SetConnectTime(double seconds) {
    connectTime = seconds;
}

void Interposer::ShortenTimeLimit(long milliseconds) {
    timeLimit = milliseconds;
}

void Interposer::SetMultiTimeout(long milliseconds) {
    multiTimeout = milliseconds;
}

void Interposer::SkipSelect() {
    always["select"] = 0;
}

void Interposer::ThrowFromParse(const std::string& message) {
    parseMessage = message;
}

std::vector<std::string> Interposer::Calls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return calls;
}

std::vector<std::string> Interposer::CallsTo(const std::string& beginning) const {
    std::vector<std::string> found;
    for (const std::string& call : Calls()) {
        if (call.compare(0, beginning.size(), beginning) == 0) {
            found.push_back(call);
        }
    }
    return found;
}

int Interposer::Unreleased() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return unreleased;
}

std::optional<int> Interposer::Enter(const std::string& call, const std::string& details) {
    const std::lock_guard<std::mutex> lock(mutex);
    calls.push_back(details.empty() ? call : call + " " + details);
    const auto failure = failures.find(call);
    if (failure != failures.end() && --failure->second.callsUntil == 0) {
        return failure->second.result;
    }
    const auto fixed = always.find(call);
    return fixed != always.end() ? std::optional<int>(fixed->second) : std::nullopt;
}

void Interposer::Count(int change) {
    const std::lock_guard<std::mutex> lock(mutex);
    unreleased += change;
}

std::optional<double> Interposer::ConnectTime() const {
    return connectTime;
}

std::optional<long> Interposer::TimeLimit() const {
    return timeLimit;
}

std::optional<long> Interposer::MultiTimeout() const {
    return multiTimeout;
}

std::optional<std::string> Interposer::ParseMessage() const {
    return parseMessage;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
