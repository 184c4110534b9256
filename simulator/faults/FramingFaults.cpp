#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

/// The length of the reply's body is told as this.
Play Length(const std::string& value) {
    return WithFraming("Content-Length: " + value + "\r\n");
}

/// Two lengths, the right one and a longer one, in one order or the other.
Play TwoLengths(bool longerLast) {
    return Sends([=](const Occasion& occasion) {
        const std::string right = LengthText(occasion.healthy.body.size());
        const std::string longer = LengthText(occasion.healthy.body.size() + 7);
        return HeadText(occasion.healthy, longerLast ? right + longer : longer + right) +
               occasion.healthy.body;
    });
}

/// The right length, written otherwise.
Play RightLength(const std::string& before, const std::string& behind) {
    return Sends([=](const Occasion& occasion) {
        const std::string& body = occasion.healthy.body;
        return HeadText(occasion.healthy, "Content-Length: " + before +
                                              std::to_string(body.size()) + behind + "\r\n") +
               body;
    });
}

std::string CutInBody(const Occasion& occasion) {
    return HeadText(occasion.healthy) + FirstHalf(occasion.healthy.body);
}

std::string Excess(const Occasion& occasion) {
    return ReplyText(occasion.healthy) + "and more than was told";
}

std::string TwoReplies(const Occasion& occasion) {
    Reply second = WithBody(occasion.healthy, "second");
    second.status = 500;
    second.reason = "Internal Server Error";
    return ReplyText(occasion.healthy) + ReplyText(second);
}

/// A status that forbids a body, and one none the less.
Play Bodiless(int status) {
    return Sends([=](const Occasion& occasion) {
        Reply reply = occasion.healthy;
        reply.status = status;
        reply.reason = "OK";
        return ReplyText(reply);
    });
}

} // namespace

std::vector<Fault> FramingFaults() {
    return {
        {"body-cut", "the connection is closed in the middle of the body", When::InReply,
         Sends(CutInBody)},
        {"body-reset", "the connection is reset in the middle of the body", When::InReply,
         SendsThenResets(CutInBody)},
        {"body-excess", "more comes than the length tells", When::InReply, Sends(Excess)},
        {"second-reply", "another reply comes behind the first", When::InReply, Sends(TwoReplies)},
        {"length-missing", "no length; the body ends with the connection", When::InReply,
         WithFraming("")},
        {"length-missing-open", "no length, and the connection stays open", When::InReply,
         SendsThenHolds([](const Occasion& occasion) {
             return HeadText(occasion.healthy, "") + occasion.healthy.body;
         })},
        {"length-empty", "a length of no digits", When::InReply, Length("")},
        {"length-negative", "a length of -1", When::InReply, Length("-1")},
        {"length-words", "a length in words", When::InReply, Length("a lot")},
        {"length-overflow", "a length of 30 digits", When::InReply, Length(std::string(30, '9'))},
        {"length-2-gb", "a length of 2 GB, of which little comes", When::InReply,
         Length("2147483648")},
        {"length-4-gb", "a length of 4 GB and 2 bytes, of which little comes", When::InReply,
         Length("4294967298")},
        {"length-hexadecimal", "a length of 0x2", When::InReply, Length("0x2")},
        {"length-plus", "the right length with a plus sign", When::InReply, RightLength("+", "")},
        {"length-letters", "the right length with letters behind it", When::InReply,
         RightLength("", "abc")},
        {"lengths-longer-last", "two lengths, the right one first", When::InReply,
         TwoLengths(true)},
        {"lengths-right-last", "two lengths, the right one last", When::InReply, TwoLengths(false)},
        {"status-204-body", "204 OK with a body, which no 204 has", When::InReply, Bodiless(204)},
        {"status-304-body", "304 OK with a body, which no 304 has", When::InReply, Bodiless(304)},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
