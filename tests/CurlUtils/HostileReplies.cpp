#include "CurlUtils/HostileReplies.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using namespace std::chrono_literals;

const std::string ok = "HTTP/1.1 200 OK\r\n";
const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";

Script Then(const std::string& reply, Step last) {
    return {ReadRequest(), Send(reply), std::move(last)};
}

/// A body of which one byte comes now and then, for ten seconds.
Script Drip() {
    Script script = Reply(ok + "Content-Length: 1000\r\n\r\n");
    for (int i = 0; i < 100; ++i) {
        script.push_back(Send("x"));
        script.push_back(Pause(100ms));
    }
    return script;
}

std::vector<HostileReply> StatusLines() {
    return {
        {"NothingThenClose", {ReadRequest()}, 52, false, ""},
        {"BareJson", Reply("{\"a\":1}"), 1, false, ""},
        {"NoReasonPhrase", Reply("HTTP/1.1 200\r\nContent-Length: 2\r\n\r\nOK"), 0, true, "OK"},
        {"Code999", Reply("HTTP/1.1 999 Odd\r\nContent-Length: 2\r\n\r\nOK"), 0, true, "OK"},
        {"CodeOfFourDigits", Reply("HTTP/1.1 2000 OK\r\n\r\n"), 1, false, ""},
        {"UnknownVersion", Reply("HTTP/3.7 200 OK\r\n\r\n"), 1, false, ""},
        {"SmallLetters", Reply("http/1.1 200 ok\r\nContent-Length: 2\r\n\r\nOK"), 0, true, "OK"},
        {"LeadingLineEnd", Reply("\r\n" + ok + "\r\n"), 1, false, ""},
        {"CutStatusLine", Reply("HTTP/1.1 20"), 52, false, ""},
        {"Binary", Reply(std::string("\0\1\2\xFF\r\n\r\n", 8)), 1, false, ""},
    };
}

std::vector<HostileReply> HeaderLines() {
    return {
        {"LineFeedsOnly", Reply("HTTP/1.1 200 OK\nContent-Length: 2\n\nOK"), 0, true, "OK"},
        {"ZeroByteInHeader", Reply(ok + std::string("A: \0b\r\n\r\n", 9)), 8, true, ""},
        {"NoColon", Reply(ok + "Nonsense\r\n\r\n"), 8, true, ""},
        {"CutInMidHeader", Reply(ok + "Content-Len"), 0, true, ""},
        {"LineOver100K", Reply(ok + "A: " + std::string(102500, 'x') + "\r\n\r\n"), 27, true, ""},
        {"HeadersOver300K",
         Reply(ok +
               [] {
                   std::string lines;
                   while (lines.size() < 400000) {
                       lines += "A: " + std::string(1000, 'x') + "\r\n";
                   }
                   return lines;
               }()),
         56, true, ""},
    };
}

std::vector<HostileReply> Framings() {
    return {
        {"ShortThenClose", Reply(ok + "Content-Length: 9\r\n\r\nOK"), 18, true, ""},
        {"ShortThenReset", Then(ok + "Content-Length: 9\r\n\r\nOK", Reset()), 56, true, ""},
        {"Excess", Reply(ok + "Content-Length: 2\r\n\r\nOKmore"), 0, true, "OK"},
        {"SecondReplyBehindTheFirst", Reply(OkReply("OK") + OkReply("NO")), 0, true, "OK"},
        {"NegativeLength", Reply(ok + "Content-Length: -1\r\n\r\nOK"), 8, true, ""},
        {"TwoGigabytesPromised", Reply(ok + "Content-Length: 2147483648\r\n\r\nOK"), 18, true, ""},
        {"TwoLengths", Reply(ok + "Content-Length: 9\r\nContent-Length: 2\r\n\r\nOK"), 0, true,
         "OK"},
        {"Status204WithBody", Reply("HTTP/1.1 204 No Content\r\nContent-Length: 2\r\n\r\nOK"), 0,
         true, ""},
        {"BadChunkSize", Reply(chunked + "zz\r\nOK\r\n0\r\n\r\n"), 56, true, ""},
        {"CutInAChunk", Reply(chunked + "9\r\nOK"), 18, true, ""},
        {"NoLastChunk", Reply(chunked + "2\r\nOK\r\n"), 18, true, ""},
        {"ResetBeforeTheLastChunk", Then(chunked + "2\r\nOK\r\n", Reset()), 56, true, ""},
        {"LengthAndChunks",
         Reply(ok + "Content-Length: 9\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nOK\r\n0\r\n\r\n"),
         0, true, "OK"},
        {"UnknownTransferCoding", Reply(ok + "Transfer-Encoding: odd\r\n\r\nOK"), 61, true, ""},
    };
}

std::vector<HostileReply> Connections() {
    return {
        {"ResetBeforeTheReply", {ReadRequest(), Reset()}, 56, false, ""},
        {"ResetInTheHeaders", Then(ok, Reset()), 56, true, ""},
        {"InterimOnly", Reply("HTTP/1.1 100 Continue\r\n\r\n"), 52, true, ""},
        {"Silence", {ReadRequest(), Stall()}, 28, false, ""},
        {"StallInTheHeaders", Then(ok, Stall()), 28, true, ""},
        {"StallInTheBody", Then(ok + "Content-Length: 9\r\n\r\nOK", Stall()), 28, true, ""},
        {"StallBehindAnInterimReply", Then("HTTP/1.1 102 Processing\r\n\r\n", Stall()), 28, true,
         ""},
        {"NoLengthHeldOpen", Then(ok + "\r\nOK", Stall()), 28, true, ""},
        {"OneByteNowAndThen", Drip(), 28, true, ""},
    };
}

} // namespace

const std::vector<HostileReply>& HostileReplies() {
    static const std::vector<HostileReply> all = [] {
        std::vector<HostileReply> replies;
        for (const auto& some : {StatusLines(), HeaderLines(), Framings(), Connections()}) {
            replies.insert(replies.end(), some.begin(), some.end());
        }
        return replies;
    }();
    return all;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
