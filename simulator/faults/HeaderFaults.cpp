#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

/// The head, every line end of which is replaced, and the body.
Play LineEnds(const std::string& end) {
    return Sends([end](const Occasion& occasion) {
        std::string head = HeadText(occasion.healthy);
        for (std::size_t at = 0; (at = head.find("\r\n", at)) != std::string::npos;) {
            head.replace(at, 2, end);
            at += end.size();
        }
        return head + occasion.healthy.body;
    });
}

std::string CutInALine(const Occasion& occasion) {
    return StatusText(occasion.healthy) + TypeText(occasion.healthy) + "Content-Len";
}

std::string WithoutBlankLine(const Occasion& occasion) {
    const Reply& reply = occasion.healthy;
    return StatusText(reply) + TypeText(reply) + LengthText(reply.body.size());
}

void Endless(Line& line, const Occasion& occasion) {
    line.Send(StatusText(occasion.healthy));
    const std::string more = "X-More: " + std::string(1000, 'x') + "\r\n";
    for (;;) {
        line.Send(more);
    }
}

} // namespace

std::vector<Fault> HeaderFaults() {
    return {
        {"header-cut", "the connection is closed in the middle of a header line", When::InReply,
         Sends(CutInALine)},
        {"header-unended", "the connection is closed before the blank line behind the headers",
         When::InReply, Sends(WithoutBlankLine)},
        {"line-feeds", "the header's lines end in line feeds alone", When::InReply, LineEnds("\n")},
        {"carriage-returns", "the header's lines end in carriage returns alone", When::InReply,
         LineEnds("\r")},
        {"header-no-colon", "a header line without a colon", When::InReply,
         WithHeaderLine("Nonsense")},
        {"header-no-name", "a header line that begins with its colon", When::InReply,
         WithHeaderLine(": nameless")},
        {"header-blank-before-colon", "a blank between a header's name and its colon",
         When::InReply, WithHeaderLine("X-Blank : 1")},
        {"header-nul", "a zero byte in a header line", When::InReply,
         WithHeaderLine(std::string("X-Zero: a\0b", 11))},
        {"header-controls", "control characters in a header line", When::InReply,
         WithHeaderLine("X-Controls: \x01\x07\x1B[31m\x7F")},
        {"header-not-ascii", "bytes that are neither ASCII nor UTF-8 in a header line",
         When::InReply, WithHeaderLine("X-Bytes: \xC3\x28\xFF")},
        {"header-folded", "a header line that goes on in the next one", When::InReply,
         WithHeaderLine("X-Folded: one\r\n  two")},
        {"header-100-kb", "a header line of more than 100 KB", When::InReply,
         WithHeaderLine("X-Long: " + std::string(102500, 'x'))},
        {"headers-endless", "header lines without end", When::InReply, Endless},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
