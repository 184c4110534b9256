#pragma once

#include "wire/Exchange.h"

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

class Line;

/// One way in which a reply goes wrong.
struct Fault {
    /// When it strikes. In the first two cases the operation is not carried out; in the last it is,
    /// and only its reply goes wrong.
    enum class When { BeforeBody, InBody, InReply };

    /// Small letters, digits and hyphens; what a user asks for it by.
    const char* name;
    /// What part of a reply goes wrong, as in "headers".
    const char* group;
    /// One line, without a full stop.
    const char* summary;
    When when;
    /// Plays it on the line, which is closed afterwards. `healthy` is the reply as it would have
    /// been; in the first two cases it is "200 OK" with the body "OK".
    void (*play)(Line& line, const Reply& healthy);
};

/// Every fault there is, in the order in which they are shown.
const std::vector<Fault>& FaultCatalogue();

/// The fault of this name. Throws a Refusal when there is none.
const Fault& FindFault(const std::string& name);

} // namespace TavoSimulator
} // namespace Brenmoor
