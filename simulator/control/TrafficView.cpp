#include "TrafficView.h"
#include "wire/Json.h"

#include <Poco/Base64Encoder.h>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string Base64(const std::string& bytes) {
    std::ostringstream text;
    Poco::Base64Encoder encoder(text);
    encoder.rdbuf()->setLineLength(0);
    encoder << bytes;
    encoder.close();
    return text.str();
}

Json::Value Texts(const std::vector<std::string>& texts) {
    Json::Value array(Json::arrayValue);
    for (const std::string& text : texts) {
        array.append(text);
    }
    return array;
}

} // namespace

Json::Value SummaryJson(const Clock& clock, const TrafficEntry& entry) {
    Json::Value json(Json::objectValue);
    json["number"] = Json::UInt64{entry.number};
    json["time"] = TimeText(clock.UnixSeconds(entry.seconds));
    json["peer"] = entry.peer;
    json["method"] = entry.method;
    json["target"] = entry.target;
    json["operation"] = entry.operation;
    json["ids"] = Texts(entry.ids);
    json["open"] = entry.open;
    json["status"] = entry.status;
    json["reason"] = entry.reason;
    json["requestBytes"] = Json::UInt64{entry.recording->ReceivedCount()};
    json["replyBytes"] = Json::UInt64{entry.recording->SentCount()};
    json["seconds"] = entry.durationSeconds;
    json["fault"] = entry.fault.empty() ? Json::Value() : Json::Value(entry.fault);
    json["flags"] = Texts(entry.flags);
    return json;
}

std::string JournalLine(const Clock& clock, const TrafficEntry& entry) {
    Json::Value json = SummaryJson(clock, entry);
    json["request"] = Base64(entry.recording->Received().bytes);
    json["reply"] = Base64(entry.recording->Sent().bytes);
    return JsonLine(json);
}

Reply ShowTraffic(World& world, const Request& request) {
    const auto after = static_cast<std::uint64_t>(
        request.Find("after") == nullptr ? 0 : request.Number("after", 0));
    const auto most = static_cast<std::size_t>(
        request.Find("most") == nullptr ? 1000 : request.Number("most", 1));
    std::vector<TrafficEntry> entries = world.traffic.Entries();
    Json::Value json(Json::objectValue);
    json["exchanges"] = Json::arrayValue;
    json["last"] = entries.empty() ? Json::UInt64{0} : Json::UInt64{entries.back().number};
    std::size_t begin = entries.size() > most ? entries.size() - most : 0;
    for (; begin < entries.size(); ++begin) {
        if (entries[begin].number > after) {
            json["exchanges"].append(SummaryJson(world.clock, entries[begin]));
        }
    }
    return JsonReply(json);
}

Reply ClearTraffic(World& world, const Request&) {
    world.traffic.Clear();
    Json::Value done(Json::objectValue);
    done["ok"] = true;
    return JsonReply(done);
}

Reply ShowBytes(World& world, const Request& request) {
    std::istringstream path(request.path.substr(sizeof "/sim/v1/traffic/" - 1));
    std::uint64_t number = 0;
    std::string which;
    path >> number >> which;
    const auto entry = world.traffic.Find(number);
    if (!entry || (which != "/request" && which != "/reply")) {
        throw NotFound("No such exchange is kept");
    }
    Reply reply;
    reply.type = "application/octet-stream";
    reply.body =
        (which == "/request" ? entry->recording->Received() : entry->recording->Sent()).bytes;
    return reply;
}

Reply ShowJournal(World& world, const Request&) {
    Reply reply;
    reply.type = "application/x-ndjson";
    for (const TrafficEntry& entry : world.traffic.Entries()) {
        reply.body += JournalLine(world.clock, entry) + "\n";
    }
    return reply;
}

} // namespace TavoSimulator
} // namespace Brenmoor
