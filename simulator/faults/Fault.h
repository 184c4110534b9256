#pragma once

#include "wire/Exchange.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

class Line;

/// The exchange that a fault strikes.
struct Occasion {
    /// The reply as it would have been; "200 OK" with the body "OK" when the operation was not
    /// carried out.
    Reply healthy;
    /// The first payload of the request; empty when it names none.
    std::string id;
    /// How long the client will still wait.
    std::chrono::milliseconds untilLimit{0};
};

/// One way in which a reply goes wrong.
struct Fault {
    /// When it strikes: before or within the request's body, with the operation left alone; behind
    /// the whole request, with the operation left alone; or behind the operation, of which only the
    /// reply goes wrong.
    enum class When { BeforeBody, InBody, Instead, InReply };

    /// Small letters, digits and hyphens; what a user asks for it by.
    const char* name;
    /// One line, without a full stop.
    const char* summary;
    When when;
    /// Plays it on the line, which is closed afterwards.
    std::function<void(Line& line, const Occasion& occasion)> play;
    /// What part of a reply goes wrong, as in "headers". The catalogue fills it in.
    const char* group = "";
};

/// Every fault there is, in the order in which they are shown.
const std::vector<Fault>& FaultCatalogue();

/// The fault of this name. Throws a Refusal when there is none.
const Fault& FindFault(const std::string& name);

/// How long the client waits for the reply to a request, in all.
std::chrono::milliseconds ClientLimit(const std::string& target);

} // namespace TavoSimulator
} // namespace Brenmoor
