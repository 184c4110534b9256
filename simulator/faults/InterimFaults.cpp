#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

/// An interim reply with this status line, and what follows it.
Text Interim(const std::string& status, const Text& then) {
    return [=](const Occasion& occasion) {
        return "HTTP/1.1 " + status + "\r\n\r\n" + then(occasion);
    };
}

std::string Nothing(const Occasion&) {
    return "";
}

std::string Healthy(const Occasion& occasion) {
    return ReplyText(occasion.healthy);
}

void Endless(Line& line, const Occasion&) {
    for (;;) {
        line.Send("HTTP/1.1 100 Continue\r\n\r\n");
    }
}

/// A redirect, in the place of an operation that is not carried out.
Play Redirect(int status, const std::string& reason, const std::string& lines) {
    return Sends([=](const Occasion&) {
        Reply reply = WithBody(Reply(), "It is elsewhere\n");
        reply.status = status;
        reply.reason = reason;
        return HeadText(reply, lines + LengthText(reply.body.size())) + reply.body;
    });
}

} // namespace

std::vector<Fault> InterimFaults() {
    return {
        {"interim-100", "100 Continue before the reply", When::InReply,
         Sends(Interim("100 Continue", Healthy))},
        {"interim-103", "103 Early Hints before the reply", When::InReply,
         Sends(Interim("103 Early Hints\r\nLink: </style.css>", Healthy))},
        {"interim-ok", "100 OK before the reply", When::InReply, Sends(Interim("100 OK", Healthy))},
        {"interim-only", "100 Continue, then the connection is closed", When::InReply,
         Sends(Interim("100 Continue", Nothing))},
        {"interim-stall", "102 Processing, then nothing more", When::InReply,
         SendsThenHolds(Interim("102 Processing", Nothing))},
        {"interim-endless", "100 Continue without end", When::InReply, Endless},
        {"switching-101", "101 Switching Protocols, though nobody asked for that", When::InReply,
         Sends(Interim("101 Switching Protocols\r\nUpgrade: odd\r\nConnection: Upgrade", Healthy))},
        {"redirect-301", "301 Moved Permanently to another server", When::Instead,
         Redirect(301, "Moved Permanently", "Location: http://192.0.2.1/xp\r\n")},
        {"redirect-302", "302 Found, to the same server", When::Instead,
         Redirect(302, "Found", "Location: /xp?op=off\r\n")},
        {"redirect-302-nowhere", "302 Found without a location", When::Instead,
         Redirect(302, "Found", "")},
        {"redirect-ok", "302 OK with a location", When::Instead,
         Redirect(302, "OK", "Location: /xp?op=off\r\n")},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
