#include "Parts.h"

#include <Poco/DeflatingStream.h>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

std::string Gzipped(const std::string& text) {
    std::ostringstream made;
    Poco::DeflatingOutputStream stream(made, Poco::DeflatingStreamBuf::STREAM_GZIP);
    stream << text;
    stream.close();
    return made.str();
}

/// The reply with another body, which is said to be of this coding.
std::string Coded(const Occasion& occasion, const std::string& coding, const std::string& body) {
    return HeadText(occasion.healthy,
                    "Content-Encoding: " + coding + "\r\n" + LengthText(body.size())) +
           body;
}

std::string Gzip(const Occasion& occasion) {
    return Coded(occasion, "gzip", Gzipped(occasion.healthy.body));
}

std::string BrokenGzip(const Occasion& occasion) {
    return Coded(occasion, "gzip", FirstHalf(Gzipped(occasion.healthy.body)));
}

std::string NoGzip(const Occasion& occasion) {
    return Coded(occasion, "gzip", occasion.healthy.body);
}

std::string UnknownCoding(const Occasion& occasion) {
    return Coded(occasion, "odd", occasion.healthy.body);
}

std::string Utf16(const Occasion& occasion) {
    std::string body = "\xFF\xFE";
    for (const char byte : occasion.healthy.body) {
        body += byte;
        body += '\0';
    }
    Reply reply = WithBody(occasion.healthy, body);
    reply.type += "; charset=utf-16";
    return ReplyText(reply);
}

} // namespace

std::vector<Fault> EncodingFaults() {
    return {
        {"gzip", "the body is compressed, though nobody asked for that", When::InReply,
         Sends(Gzip)},
        {"gzip-broken", "the first half of a compressed body", When::InReply, Sends(BrokenGzip)},
        {"gzip-in-name-only", "a plain body that is said to be compressed", When::InReply,
         Sends(NoGzip)},
        {"coding-unknown", "a plain body that is said to be of an unknown coding", When::InReply,
         Sends(UnknownCoding)},
        {"utf-16", "the body in UTF-16", When::InReply, Sends(Utf16)},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
