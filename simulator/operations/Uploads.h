#pragma once

#include "model/World.h"
#include "wire/Exchange.h"

namespace Brenmoor {
namespace TavoSimulator {

/// The operations that bring something in a multipart form; all of them are POST requests.

/// Keeps a code package under the name of the file that it was.
Reply AnswerJar(World& world, const Request& request);

/// Records what the payload says about the command with "tag".
Reply AnswerReply(World& world, const Request& request);

/// Turns a packet's escaped text back into its bytes and keeps them.
Reply AnswerRawPacket(World& world, const Request& request);

/// Keeps a file under the name "remote", or that of the file that it was.
Reply AnswerUpload(World& world, const Request& request);

/// Keeps a registration document, which must be JSON. Without "id" it belongs to the payload with
/// the empty identifier.
Reply AnswerMeta(World& world, const Request& request);

} // namespace TavoSimulator
} // namespace Brenmoor
