#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

constexpr char chunked[] = "Transfer-Encoding: chunked\r\n";
constexpr char lastChunk[] = "0\r\n\r\n";

std::string Hexadecimal(std::size_t number) {
    std::string digits;
    do {
        digits.insert(digits.begin(), "0123456789ABCDEF"[number % 16]);
        number /= 16;
    } while (number > 0);
    return digits;
}

std::string Chunk(const std::string& text, const std::string& end = "\r\n") {
    return Hexadecimal(text.size()) + end + text + end;
}

/// The head of a chunked reply and what is made of the body.
Text Chunked(const std::function<std::string(const std::string& body)>& made) {
    return [made](const Occasion& occasion) {
        return HeadText(occasion.healthy, chunked) + made(occasion.healthy.body);
    };
}

/// The body as one chunk of which this is told to be the size.
Play Size(const std::string& size) {
    return Sends(Chunked(
        [size](const std::string& body) { return size + "\r\n" + body + "\r\n" + lastChunk; }));
}

std::string WithoutLast(const std::string& body) {
    return Chunk(body);
}

std::string Cut(const std::string& body) {
    return Hexadecimal(body.size()) + "\r\n" + FirstHalf(body);
}

std::string WithoutLineEnd(const std::string& body) {
    return Hexadecimal(body.size()) + "\r\n" + body + lastChunk;
}

std::string LineFeeds(const std::string& body) {
    return Chunk(body, "\n") + "0\n\n";
}

std::string LastCut(const std::string& body) {
    return Chunk(body) + "0\r\n";
}

std::string ByteByByte(const std::string& body) {
    std::string text;
    for (const char byte : body) {
        text += Chunk(std::string(1, byte));
    }
    return text + lastChunk;
}

std::string Extended(const std::string& body) {
    return Hexadecimal(body.size()) + ";a=\"b\"\r\n" + body + "\r\n" + lastChunk;
}

std::string WithTrailer(const std::string& body) {
    return Chunk(body) + "0\r\nX-Trailer: 1\r\n\r\n";
}

std::string WithStatusBehind(const std::string& body) {
    return Chunk(body) + "0\r\nHTTP/1.1 500 Internal Server Error\r\n\r\n";
}

std::string LengthToo(const Occasion& occasion) {
    const std::string& body = occasion.healthy.body;
    return HeadText(occasion.healthy, LengthText(body.size() + 7) + chunked) + Chunk(body) +
           lastChunk;
}

std::string InHttp10(const Occasion& occasion) {
    const std::string& body = occasion.healthy.body;
    const std::string reply = HeadText(occasion.healthy, chunked) + Chunk(body) + lastChunk;
    return "HTTP/1.0" + reply.substr(8);
}

void EndlessTrailers(Line& line, const Occasion& occasion) {
    line.Send(HeadText(occasion.healthy, chunked) + Chunk(occasion.healthy.body) + "0\r\n");
    const std::string more = "X-More: " + std::string(1000, 'x') + "\r\n";
    for (;;) {
        line.Send(more);
        // Nothing but the client's time bounds it, nor its memory.
        line.Pause(std::chrono::milliseconds(1));
    }
}

} // namespace

std::vector<Fault> ChunkFaults() {
    return {
        {"chunk-size-bad", "a chunk's size is zz", When::InReply, Size("zz")},
        {"chunk-size-negative", "a chunk's size is -2", When::InReply, Size("-2")},
        {"chunk-size-missing", "a chunk's size is missing", When::InReply, Size("")},
        {"chunk-size-overflow", "a chunk's size has 17 digits", When::InReply,
         Size(std::string(17, 'F'))},
        {"chunk-cut", "the connection is closed in the middle of a chunk", When::InReply,
         Sends(Chunked(Cut))},
        {"chunk-no-last", "the connection is closed before the last chunk", When::InReply,
         Sends(Chunked(WithoutLast))},
        {"chunk-last-cut", "the connection is closed within the last chunk", When::InReply,
         Sends(Chunked(LastCut))},
        {"chunk-reset", "the connection is reset before the last chunk", When::InReply,
         SendsThenResets(Chunked(WithoutLast))},
        {"chunk-no-line-end", "the line end behind a chunk is missing", When::InReply,
         Sends(Chunked(WithoutLineEnd))},
        {"chunk-line-feeds", "the chunks' lines end in line feeds alone", When::InReply,
         Sends(Chunked(LineFeeds))},
        {"chunk-bytes", "chunks of one byte each, which are fine", When::InReply,
         Sends(Chunked(ByteByByte))},
        {"chunk-extension", "a chunk with an extension, which is fine", When::InReply,
         Sends(Chunked(Extended))},
        {"chunk-trailers", "a header line behind the last chunk, which is fine", When::InReply,
         Sends(Chunked(WithTrailer))},
        {"chunk-trailer-status", "a status line behind the last chunk", When::InReply,
         Sends(Chunked(WithStatusBehind))},
        {"chunk-trailers-endless", "header lines without end behind the last chunk", When::InReply,
         EndlessTrailers},
        {"chunk-and-length", "chunks, and a length that is wrong", When::InReply, Sends(LengthToo)},
        {"chunk-http-1-0", "chunks in HTTP/1.0, which has none", When::InReply, Sends(InHttp10)},
        {"transfer-coding-unknown", "a transfer coding that nobody knows", When::InReply,
         WithFraming("Transfer-Encoding: odd\r\n")},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
