#pragma once

#include "support/ScriptedServer.h"

#include <ostream>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A reply that no well-behaved server gives, and what libcurl makes of it.
struct HostileReply {
    const char* name;
    Script script;
    int code;           ///< what curl_easy_perform() returns
    bool hasStatusLine; ///< whether a status line reaches the reader, also where the code is not 0
    std::string body;   ///< what of the body reaches the reader, where the code is 0
};

/// What GoogleTest shows of it.
inline void PrintTo(const HostileReply& reply, std::ostream* out) {
    *out << reply.name;
}

/// Named by their fault. Those that time out take as long as the transfer's limit.
const std::vector<HostileReply>& HostileReplies();

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
