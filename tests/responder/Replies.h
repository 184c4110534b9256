#pragma once

#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {

/// The whole reply to a request whose first line is `target`. Made once and kept for good, so that
/// a server which sends it does nothing else.
///
///   - op=poll: as many commands as the id says, or a short reply for an id that is no number
///   - op=script: as many bytes as its cmd says, or the body of a poll for cmd=poll<number>
///   - anything else: "OK"
///   - id=refused: the same with a status line that is not OK
const std::string& ReplyTo(const std::string& target);

/// How many bytes the body of a request has at least whose first line is `target`: what the id of a
/// POST tells behind a P.
std::size_t LeastBody(const std::string& target);

} // namespace TavoRemotingLib
} // namespace Brenmoor
