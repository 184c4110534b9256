#include "ExchangeHandler.h"
#include "Answering.h"
#include "ClockWait.h"
#include "Json.h"
#include "RecordedSocket.h"
#include "control/Control.h"
#include "faults/SocketLine.h"
#include "operations/Operations.h"
#include "operations/Scrutiny.h"

#include <memory>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Poco::Net::HTTPServerRequest;
using Poco::Net::HTTPServerResponse;
using RealClock = std::chrono::steady_clock;

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
        entry.flags = HeadFlags(Head());
        entry.recording = recorded.TakeRecording();
        Describe(entry);
        operation = entry.operation;
        ids = entry.ids;
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
        if (world.settings.replay) {
            PlayAgain();
            return;
        }
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
    RequestHead Head() const {
        RequestHead head;
        head.method = in.getMethod();
        head.target = in.getURI();
        head.version = in.getVersion();
        head.headers.assign(in.begin(), in.end());
        head.connectionUsed = recorded.IsUsed();
        return head;
    }

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
            request.flag = [this](const std::string& flag) {
                world.traffic.Change(number,
                                     [&](TrafficEntry& entry) { AddFlag(entry.flags, flag); });
            };
            if (request.path != "/xp") {
                throw NotFound("Nothing is served here; see /xp and /sim/v1/");
            }
            RequireNoOtherSite(request);
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

    void PlayAgain() {
        if (!Drain(in)) {
            response.setKeepAlive(false);
        }
        const auto reply = world.settings.replay->Next(in.getMethod(), in.getURI());
        if (reply) {
            PlayAgain(*reply);
            return;
        }
        const Reply refusal = AnswerOrRefuse(
            []() -> Reply { throw NotFound("Nothing was recorded for this request"); });
        NoteEnd(refusal.status, refusal.reason);
        Send(refusal, response);
    }

    void PlayAgain(const Replay::Recorded& reply) {
        world.traffic.Change(number, [&](TrafficEntry& entry) { entry.fault = reply.fault; });
        response.setKeepAlive(false);
        SocketLine line = MakeLine();
        try {
            WaitOn(world.clock, reply.seconds, line);
            NoteEnd(reply.status, reply.reason);
            line.Send(reply.bytes);
        } catch (const Line::Ended&) {
            NoteEnd(0, "");
        }
    }

    SocketLine MakeLine() {
        return SocketLine(
            socket, in.stream(), [this] { return world.changes.Closed(); },
            world.settings.pauseScale);
    }

    void Play(const Fault& fault) {
        SocketLine line = MakeLine();
        Occasion occasion;
        occasion.id = ids.empty() ? "" : ids.front();
        occasion.healthy = fault.when == Fault::When::InReply ? Answered() : Ok();
        if (fault.when == Fault::When::InReply || fault.when == Fault::When::Instead) {
            Drain(in);
        }
        occasion.untilLimit =
            ClientLimit(in.getURI()) -
            std::chrono::ceil<std::chrono::milliseconds>(RealClock::now() - begin);
        try {
            fault.play(line, occasion);
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
    std::vector<std::string> ids;
    std::uint64_t number = 0;
    const RealClock::time_point begin = RealClock::now();
};

/// The requests of those who steer and look; they are not in the traffic.
void Steer(World& world, HTTPServerRequest& in, HTTPServerResponse& response,
           const std::shared_ptr<UnderWay>& underWay) {
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
    if (reply.stream) {
        // Poco sends the last chunk only after the handler has returned.
        response.setKeepAlive(false);
        recorded.Keep(underWay);
    }
    Send(reply, response);
    recorded.NextExchange();
}

} // namespace

ExchangeDesk::ExchangeDesk(World& theWorld, LineOutput* theLines)
    : world(theWorld), lines(theLines) {}

World& ExchangeDesk::GetWorld() {
    return world;
}

void ExchangeDesk::Print(std::uint64_t number) {
    const auto entry = world.traffic.Find(number);
    if (lines == nullptr || !entry) {
        return;
    }
    lines->Write(LineText(*entry, TimeText(world.clock.UnixSeconds(entry->seconds))));
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
    const auto underWay = std::make_shared<UnderWay>(desk);
    if (IsControl(request.getURI())) {
        Steer(desk.GetWorld(), request, response, underWay);
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
