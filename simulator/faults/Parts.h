#pragma once

#include "Fault.h"
#include "Line.h"

#include <functional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// The groups of the catalogue, one file each.
std::vector<Fault> StatusLineFaults();
std::vector<Fault> HeaderFaults();
std::vector<Fault> FramingFaults();
std::vector<Fault> ChunkFaults();
std::vector<Fault> ConnectionFaults();
std::vector<Fault> TimingFaults();
std::vector<Fault> SizeFaults();
std::vector<Fault> EncodingFaults();
std::vector<Fault> InterimFaults();
std::vector<Fault> JsonFaults();
std::vector<Fault> PollFaults();
std::vector<Fault> CommandFaults();
std::vector<Fault> PositionFaults();

/// What the faults are made of.
using Play = std::function<void(Line& line, const Occasion& occasion)>;
using Text = std::function<std::string(const Occasion& occasion)>;

/// The parts of a reply as a healthy server sends it; each has its line end.
std::string StatusText(const Reply& reply);
std::string TypeText(const Reply& reply);
std::string LengthText(std::size_t length);
/// A head with these lines between the content's type and the end.
std::string HeadText(const Reply& reply, const std::string& lines);
/// The head with the right length, and the whole reply.
std::string HeadText(const Reply& reply);
std::string ReplyText(const Reply& reply);
/// The same reply with another body.
Reply WithBody(Reply reply, const std::string& body);
/// The first half of a text.
std::string FirstHalf(const std::string& text);

/// Sends what is made for the occasion.
Play Sends(Text text);
/// The same, then holds or resets the connection.
Play SendsThenHolds(Text text);
Play SendsThenResets(Text text);

/// Sends the healthy reply, but
Play WithStatusLine(const std::string& line); ///< with another status line
Play WithHeaderLine(const std::string& line); ///< with one more header line
Play WithFraming(const std::string& lines);   ///< with these lines in the place of its length
Play WithBodyMade(Text body);                 ///< with another body, of the right length

/// Sends "200 OK" and this body as JSON, with "$ID" replaced by the payload's quoted id, "$COMMAND"
/// by a good command for it and "$GPS" by a good position.
Play Answers(const std::string& json);
/// A fault that does this in the place of the operation.
Fault Answer(const char* name, const char* summary, const std::string& json);

} // namespace TavoSimulator
} // namespace Brenmoor
