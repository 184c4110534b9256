#include "ExchangeHandler.h"
#include "Operations.h"
#include "Steering.h"

#include <Poco/CountingStream.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/Net/HTTPServerRequestImpl.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/Timestamp.h>
#include <sys/socket.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Poco::Net::HTTPMessage;
using Poco::Net::HTTPServerRequest;
using Poco::Net::HTTPServerResponse;

// What is left of a refused request is read, up to here, before the answer is sent: a client in
// the middle of its upload would otherwise lose the answer.
constexpr std::streamsize mostUnreadBytes = std::streamsize{64} * 1024 * 1024;

/// Counts an exchange as under way.
class UnderWay {
public:
    explicit UnderWay(ExchangeDesk& theDesk) : desk(theDesk) {
        desk.Begin();
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;
    ~UnderWay() {
        desk.End();
    }

private:
    ExchangeDesk& desk;
};

bool IsPeerPresent(HTTPServerRequest& request) {
    Poco::Net::StreamSocket& socket =
        dynamic_cast<Poco::Net::HTTPServerRequestImpl&>(request).socket();
    char next = '\0';
    try {
        return socket.receiveBytes(&next, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
    } catch (const Poco::TimeoutException&) {
        return true; // nothing to read, which is what a peer does that waits
    } catch (const Poco::Exception&) {
        return false;
    }
}

bool HasKnownEnd(const HTTPServerRequest& request) {
    return request.hasContentLength() || request.getChunkedTransferEncoding() ||
           request.getMethod() != "POST";
}

void RequirePlainFrame(const HTTPServerRequest& request) {
    if (request.getVersion() != HTTPMessage::HTTP_1_1 &&
        request.getVersion() != HTTPMessage::HTTP_1_0) {
        throw BadRequest("The request line does not end in HTTP/1.1 or HTTP/1.0");
    }
    if (!HasKnownEnd(request)) {
        throw Refusal(411, "Length Required", "The content has no length");
    }
}

Reply Answer(World& world, const Request& request) {
    if (IsSteering(request)) {
        return AnswerSteering(world, request);
    }
    if (request.path == "/xp") {
        return AnswerOperation(world, request);
    }
    throw Refusal(404, "Not Found", "Nothing is served here; see /xp and /sim/");
}

Reply RefusalReply(const Refusal& refusal, HTTPServerResponse& response) {
    if (!refusal.allow.empty()) {
        response.set("Allow", refusal.allow);
    }
    Reply reply;
    reply.status = refusal.status;
    reply.reason = refusal.reason;
    reply.body = std::string(refusal.what()) + "\n";
    return reply;
}

Reply AnswerOrRefuse(World& world, HTTPServerRequest& in, std::istream& body,
                     HTTPServerResponse& response, bool& isSteering) {
    try {
        RequirePlainFrame(in);
        Request request(in.getMethod(), in.getURI(), body);
        isSteering = IsSteering(request);
        request.contentType = in.getContentType();
        request.peerPresent = [&in] {
            return IsPeerPresent(in);
        };
        return Answer(world, request);
    } catch (const Refusal& refusal) {
        return RefusalReply(refusal, response);
    } catch (const std::exception& failure) {
        return RefusalReply(Refusal(500, "Internal Server Error", failure.what()), response);
    }
}

/// Reads what is left of the request. False when that was not possible.
bool Drain(HTTPServerRequest& request, std::istream& body) {
    if (!HasKnownEnd(request)) {
        return false;
    }
    body.ignore(mostUnreadBytes);
    return body.eof() && !body.bad();
}

std::uintmax_t ReplySize(const Reply& reply) {
    return reply.filePath.empty() ? reply.body.size() : std::filesystem::file_size(reply.filePath);
}

void Send(const Reply& reply, HTTPServerResponse& response) {
    response.setVersion(HTTPMessage::HTTP_1_1);
    response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(reply.status),
                                reply.reason);
    if (!reply.filePath.empty()) {
        response.sendFile(reply.filePath, reply.type);
        return;
    }
    response.setContentType(reply.type);
    response.sendBuffer(reply.body.data(), reply.body.size());
}

} // namespace

ExchangeDesk::ExchangeDesk(World& theWorld, std::ostream* theLines)
    : world(theWorld), lines(theLines) {}

World& ExchangeDesk::GetWorld() {
    return world;
}

void ExchangeDesk::Note(const JournalEntry& entry, bool inJournal) {
    if (inJournal) {
        world.journal.Add(entry);
    }
    const std::lock_guard<std::mutex> lock(mutex);
    if (lines != nullptr) {
        *lines << Line(entry) + "\n" << std::flush;
    }
}

void ExchangeDesk::Begin() {
    const std::lock_guard<std::mutex> lock(mutex);
    ++underWay;
}

void ExchangeDesk::End() {
    const std::lock_guard<std::mutex> lock(mutex);
    --underWay;
    ended.notify_all();
}

void ExchangeDesk::WaitUntilIdle(std::chrono::milliseconds longest) {
    std::unique_lock<std::mutex> lock(mutex);
    ended.wait_for(lock, longest, [this] { return underWay == 0; });
}

ExchangeHandler::ExchangeHandler(ExchangeDesk& theDesk) : desk(theDesk) {}

void ExchangeHandler::handleRequest(HTTPServerRequest& request, HTTPServerResponse& response) {
    const UnderWay underWay(desk);
    World& world = desk.GetWorld();
    const double begin = world.clock.Seconds();
    JournalEntry entry;
    entry.time = Poco::DateTimeFormatter::format(Poco::Timestamp(), "%Y-%m-%dT%H:%M:%S.%iZ");
    entry.peer = request.clientAddress().toString();
    entry.method = request.getMethod();
    entry.target = request.getURI();

    Poco::CountingInputStream body(request.stream());
    bool isSteering = false;
    const Reply reply = AnswerOrRefuse(world, request, body, response, isSteering);
    if (!Drain(request, body)) {
        response.setKeepAlive(false);
    }
    entry.status = reply.status;
    entry.reason = reply.reason;
    entry.requestBytes = static_cast<std::uintmax_t>(body.chars());
    entry.replyBytes = ReplySize(reply);
    entry.seconds = world.clock.Seconds() - begin;
    // Before the answer goes out, so that whoever got it finds it noted.
    desk.Note(entry, !isSteering);
    Send(reply, response);
}

ExchangeHandlerFactory::ExchangeHandlerFactory(ExchangeDesk& theDesk) : desk(theDesk) {}

Poco::Net::HTTPRequestHandler*
ExchangeHandlerFactory::createRequestHandler(const Poco::Net::HTTPServerRequest&) {
    return new ExchangeHandler(desk);
}

} // namespace TavoSimulator
} // namespace Brenmoor
