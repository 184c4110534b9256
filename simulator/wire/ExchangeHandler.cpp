#include "ExchangeHandler.h"
#include "Json.h"
#include "RecordedSocket.h"
#include "control/Control.h"
#include "faults/Line.h"
#include "operations/Operations.h"

#include <Poco/Net/HTTPServerRequestImpl.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/StreamCopier.h>
#include <fstream>
#include <limits>
#include <sstream>
#include <sys/socket.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Poco::Net::HTTPMessage;
using Poco::Net::HTTPServerRequest;
using Poco::Net::HTTPServerResponse;
using RealClock = std::chrono::steady_clock;

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

Poco::Net::StreamSocket& SocketOf(HTTPServerRequest& request) {
    return dynamic_cast<Poco::Net::HTTPServerRequestImpl&>(request).socket();
}

bool IsPeerPresent(HTTPServerRequest& request) {
    char next = '\0';
    try {
        return SocketOf(request).receiveBytes(&next, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
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

Reply RefusalReply(const Refusal& refusal) {
    Reply reply;
    reply.status = refusal.status;
    reply.reason = refusal.reason;
    reply.allow = refusal.allow;
    reply.body = std::string(refusal.what()) + "\n";
    return reply;
}

template <typename Function>
Reply AnswerOrRefuse(const Function& answer) {
    try {
        return answer();
    } catch (const Refusal& refusal) {
        return RefusalReply(refusal);
    } catch (const std::exception& failure) {
        return RefusalReply(Refusal(500, "Internal Server Error", failure.what()));
    }
}

/// Reads what is left of the request. False when that was not possible.
bool Drain(HTTPServerRequest& request) {
    if (!HasKnownEnd(request)) {
        return false;
    }
    request.stream().ignore(mostUnreadBytes);
    return request.stream().eof() && !request.stream().bad();
}

void Send(const Reply& reply, HTTPServerResponse& response) {
    response.setVersion(HTTPMessage::HTTP_1_1);
    response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(reply.status),
                                reply.reason);
    if (!reply.allow.empty()) {
        response.set("Allow", reply.allow);
    }
    response.setContentType(reply.type);
    if (reply.stream) {
        response.set("Cache-Control", "no-store");
        response.setChunkedTransferEncoding(true);
        reply.stream(response.send());
        return;
    }
    std::istringstream text(reply.body);
    std::ifstream file;
    std::uintmax_t size = reply.body.size();
    if (!reply.filePath.empty()) {
        file.open(reply.filePath, std::ios::binary);
        size = std::filesystem::file_size(reply.filePath);
    }
    response.setContentLength64(static_cast<Poco::Int64>(size));
    std::ostream& out = response.send();
    Poco::StreamCopier::copyStream(reply.filePath.empty() ? static_cast<std::istream&>(text) : file,
                                   out);
    // Else it would go out after the exchange has ended.
    out.flush();
}

/// One exchange of a payload, from its entry in the traffic to its end there.
class PayloadExchange {
public:
    PayloadExchange(World& theWorld, HTTPServerRequest& theIn, HTTPServerResponse& theResponse)
        : world(theWorld), in(theIn), response(theResponse), socket(SocketOf(in)),
          recorded(dynamic_cast<RecordedSocket&>(*socket.impl())) {
        TrafficEntry entry;
        entry.seconds = world.clock.Seconds();
        entry.peer = in.clientAddress().toString();
        entry.method = in.getMethod();
        entry.target = in.getURI();
        entry.recording = recorded.TakeRecording();
        Describe(entry);
        operation = entry.operation;
        number = world.traffic.Begin(std::move(entry));
    }

    PayloadExchange(const PayloadExchange&) = delete;
    PayloadExchange& operator=(const PayloadExchange&) = delete;

    ~PayloadExchange() {
        world.traffic.Change(number, [](TrafficEntry& entry) { entry.open = false; });
        recorded.NextExchange();
    }

    std::uint64_t Number() const {
        return number;
    }

    void Run() {
        const Fault* const fault = operation.empty() ? nullptr : world.faults.Take(operation);
        if (fault == nullptr) {
            const Reply reply = Answered();
            if (!Drain(in)) {
                response.setKeepAlive(false);
            }
            // Before the answer goes out, so that whoever got it finds it noted.
            NoteEnd(reply.status, reply.reason);
            Send(reply, response);
            return;
        }
        world.traffic.Change(number, [&](TrafficEntry& entry) { entry.fault = fault->name; });
        Play(*fault);
    }

private:
    void Describe(TrafficEntry& entry) const {
        try {
            std::istream none(nullptr);
            const Request request(in.getMethod(), in.getURI(), none);
            if (request.path != "/xp") {
                return;
            }
            for (const auto& [name, value] : request.parameters) {
                if (name == "op" && entry.operation.empty()) {
                    entry.operation = value;
                } else if (name == "id") {
                    entry.ids.push_back(value);
                }
            }
        } catch (const Refusal&) {
            return; // it will be refused in due course
        }
    }

    Reply Answered() {
        return AnswerOrRefuse([this] {
            RequirePlainFrame(in);
            Request request(in.getMethod(), in.getURI(), in.stream());
            request.headers.assign(in.begin(), in.end());
            request.peerPresent = [this] {
                return IsPeerPresent(in);
            };
            if (request.path != "/xp") {
                throw NotFound("Nothing is served here; see /xp and /sim/v1/");
            }
            return AnswerOperation(world, request);
        });
    }

    void NoteEnd(int status, const std::string& reason) {
        const std::chrono::duration<double> duration = RealClock::now() - begin;
        world.traffic.Change(number, [&](TrafficEntry& entry) {
            entry.status = status;
            entry.reason = reason;
            entry.durationSeconds = duration.count();
        });
    }

    void Play(const Fault& fault) {
        const auto readBody = [this](std::size_t most) {
            in.stream().ignore(static_cast<std::streamsize>(
                std::min<std::size_t>(most, std::numeric_limits<std::streamsize>::max())));
        };
        Line line(
            socket, [this] { return world.changes.Closed(); }, readBody, world.settings.pauseScale);
        const bool carriedOut = fault.when == Fault::When::InReply;
        const Reply healthy = carriedOut ? Answered() : Ok();
        if (carriedOut) {
            Drain(in);
        }
        try {
            fault.play(line, healthy);
        } catch (const Line::Ended&) { // NOLINT(bugprone-empty-catch)
            // The client has enough of it, which is all that a fault can want.
        }
        NoteEnd(0, "");
        response.setKeepAlive(false);
    }

    World& world;
    HTTPServerRequest& in;
    HTTPServerResponse& response;
    Poco::Net::StreamSocket& socket;
    RecordedSocket& recorded;
    std::string operation;
    std::uint64_t number = 0;
    const RealClock::time_point begin = RealClock::now();
};

/// The requests of those who steer and look; they are not in the traffic.
void Steer(World& world, HTTPServerRequest& in, HTTPServerResponse& response) {
    RecordedSocket& recorded = dynamic_cast<RecordedSocket&>(*SocketOf(in).impl());
    recorded.TakeRecording();
    const Reply reply = AnswerOrRefuse([&] {
        RequirePlainFrame(in);
        Request request(in.getMethod(), in.getURI(), in.stream());
        request.headers.assign(in.begin(), in.end());
        return AnswerControl(world, request);
    });
    if (!Drain(in)) {
        response.setKeepAlive(false);
    }
    Send(reply, response);
    recorded.NextExchange();
}

} // namespace

ExchangeDesk::ExchangeDesk(World& theWorld, std::ostream* theLines)
    : world(theWorld), lines(theLines) {}

World& ExchangeDesk::GetWorld() {
    return world;
}

void ExchangeDesk::Print(std::uint64_t number) {
    const auto entry = world.traffic.Find(number);
    if (lines == nullptr || !entry) {
        return;
    }
    const std::string line = LineText(*entry, TimeText(world.clock.UnixSeconds(entry->seconds)));
    const std::lock_guard<std::mutex> lock(mutex);
    *lines << line + "\n" << std::flush;
}

void ExchangeDesk::NoteGarbage(const std::string& peer,
                               const std::shared_ptr<const Recording>& recording) {
    TrafficEntry entry;
    entry.seconds = world.clock.Seconds();
    entry.peer = peer;
    entry.open = false;
    entry.flags.emplace_back("not an HTTP request");
    entry.recording = recording;
    Print(world.traffic.Begin(std::move(entry)));
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
    if (IsControl(request.getURI())) {
        Steer(desk.GetWorld(), request, response);
        return;
    }
    std::uint64_t number = 0;
    {
        PayloadExchange exchange(desk.GetWorld(), request, response);
        number = exchange.Number();
        exchange.Run();
    }
    desk.Print(number);
}

ExchangeHandlerFactory::ExchangeHandlerFactory(ExchangeDesk& theDesk) : desk(theDesk) {}

Poco::Net::HTTPRequestHandler*
ExchangeHandlerFactory::createRequestHandler(const Poco::Net::HTTPServerRequest&) {
    return new ExchangeHandler(desk);
}

} // namespace TavoSimulator
} // namespace Brenmoor
