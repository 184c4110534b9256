#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

/// A reply of another status, in the place of an operation that is not carried out.
Play Status(int status, const std::string& reason, const std::string& body = "") {
    return Sends([=](const Occasion&) {
        Reply reply = WithBody(Reply(), body);
        reply.status = status;
        reply.reason = reason;
        return ReplyText(reply);
    });
}

void SayNothing(Line&, const Occasion&) {}

std::string BareBody(const Occasion& occasion) {
    return occasion.healthy.body;
}

std::string Binary(const Occasion&) {
    return std::string("\0\1\2\xFF\xFE\r\n\r\n", 9);
}

} // namespace

std::vector<Fault> StatusLineFaults() {
    return {
        {"no-reply", "no reply at all, then the connection is closed", When::InReply, SayNothing},
        {"bare-body", "the body alone, without status line and headers", When::InReply,
         Sends(BareBody)},
        {"not-http", "the greeting of another protocol", When::InReply,
         Sends([](const Occasion&) { return "SSH-2.0-vehicle\r\n"; })},
        {"binary", "bytes that are no text", When::InReply, Sends(Binary)},
        {"status-cut", "the connection is closed in the middle of the status line", When::InReply,
         Sends([](const Occasion&) { return "HTTP/1.1 20"; })},
        {"version-alone", "a status line of nothing but HTTP/1.1", When::InReply,
         WithStatusLine("HTTP/1.1")},
        {"version-1-0", "HTTP/1.0 200 OK, which is fine", When::InReply,
         WithStatusLine("HTTP/1.0 200 OK")},
        {"version-2", "HTTP/2 200 OK, in the way of HTTP/1", When::InReply,
         WithStatusLine("HTTP/2 200 OK")},
        {"version-3-7", "HTTP/3.7 200 OK", When::InReply, WithStatusLine("HTTP/3.7 200 OK")},
        {"small-letters", "http/1.1 200 ok", When::InReply, WithStatusLine("http/1.1 200 ok")},
        {"leading-line-end", "an empty line before the status line", When::InReply,
         WithStatusLine("\r\nHTTP/1.1 200 OK")},
        {"tab-separators", "tabs between the parts of the status line", When::InReply,
         WithStatusLine("HTTP/1.1\t200\tOK")},
        {"reason-missing", "HTTP/1.1 200 without a reason phrase", When::InReply,
         WithStatusLine("HTTP/1.1 200")},
        {"reason-fine", "200 Fine in the place of 200 OK", When::InReply,
         WithStatusLine("HTTP/1.1 200 Fine")},
        {"reason-small", "200 ok in the place of 200 OK", When::InReply,
         WithStatusLine("HTTP/1.1 200 ok")},
        {"reason-longer", "200 Not OK, which ends well", When::InReply,
         WithStatusLine("HTTP/1.1 200 Not OK")},
        {"reason-blanks", "blanks and a tab behind 200 OK", When::InReply,
         WithStatusLine("HTTP/1.1 200 OK \t ")},
        {"code-404-ok", "404 OK", When::InReply, WithStatusLine("HTTP/1.1 404 OK")},
        {"code-999", "999 OK, a code of no meaning", When::InReply,
         WithStatusLine("HTTP/1.1 999 OK")},
        {"code-negative", "-12 OK", When::InReply, WithStatusLine("HTTP/1.1 -12 OK")},
        {"code-two-digits", "20 OK", When::InReply, WithStatusLine("HTTP/1.1 20 OK")},
        {"code-four-digits", "2000 OK", When::InReply, WithStatusLine("HTTP/1.1 2000 OK")},
        {"code-zero", "000 OK", When::InReply, WithStatusLine("HTTP/1.1 000 OK")},
        {"code-below-100", "099 OK", When::InReply, WithStatusLine("HTTP/1.1 099 OK")},
        {"code-with-letter", "2x0 OK", When::InReply, WithStatusLine("HTTP/1.1 2x0 OK")},
        {"status-400", "400 Bad Request with a line of text", When::Instead,
         Status(400, "Bad Request", "No such thing\n")},
        {"status-404", "404 Not Found with an empty body", When::Instead, Status(404, "Not Found")},
        {"status-417", "417 Expectation Failed, though none was told", When::Instead,
         Status(417, "Expectation Failed")},
        {"status-500", "500 Internal Server Error with an empty body", When::Instead,
         Status(500, "Internal Server Error")},
        {"status-503", "503 Service Unavailable with a page of HTML", When::Instead,
         Status(503, "Service Unavailable", "<html><body>Come back later</body></html>\n")},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
