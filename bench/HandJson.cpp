#include "HandJson.h"

#include <json/reader.h>
#include <stdexcept>
#include <utility>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

using Commands = std::vector<HalcyrREST::RemoteCommand>;
using Hardware = HalcyrREST::PRHardware;

struct Field {
    const char* key;
    std::string Hardware::*member;
};

const Field fields[] = {{"manufacturer", &Hardware::manufacturer},
                        {"model", &Hardware::model},
                        {"pn", &Hardware::partNumber},
                        {"serial", &Hardware::serialNumber},
                        {"swver", &Hardware::swVer},
                        {"tty", &Hardware::tty},
                        {"connector", &Hardware::connector}};

HalcyrREST::RemoteCommand ReadCommand(const Json::Value& item) {
    HalcyrREST::RemoteCommand command;
    command.id = item["id"].asString();
    const std::string text = item["command"].asString();
    const std::size_t end = text.find(text[0], 1);
    command.tag = text.substr(1, end - 1);
    command.command = text.substr(end + 1);
    return command;
}

Hardware ReadEntry(const Json::Value& entry) {
    Hardware record;
    for (const Field& field : fields) {
        record.*field.member = entry[field.key].asString();
    }
    record.hasPower = entry.isMember("power");
    record.power = entry["power"].asInt();
    return record;
}

void ReadPosition(const Json::Value& position) {
    if (position["latitude"].asDouble() == 0.0 || position["longitude"].asDouble() == 0.0 ||
        position["timeFix"].asDouble() == 0.0) {
        throw std::runtime_error("the reply to the poll has no position");
    }
}

} // namespace

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Json::Value Parse(const std::string& text) {
    Json::Reader reader;
    Json::Value value;
    if (!reader.parse(text.data(), text.data() + text.size(), value, false)) {
        throw std::runtime_error(reader.getFormattedErrorMessages());
    }
    return value;
}
#pragma GCC diagnostic pop

Commands ReadPoll(const std::string& body) {
    const Json::Value reply = Parse(body);
    Commands commands;
    for (const Json::Value& item : reply["commands"]) {
        commands.push_back(ReadCommand(item));
    }
    ReadPosition(reply["gps"]);
    return commands;
}

Commands ReadPollByContract(const std::string& body) {
    const Json::Value reply = Parse(body);
    Commands commands;
    for (const Json::Value& item : reply["commands"]) {
        commands.push_back(ReadCommand(Parse(item.toStyledString())));
    }
    ReadPosition(Parse(reply["gps"].toStyledString()));
    return commands;
}

std::vector<Hardware> ReadHardware(const std::string& document) {
    const Json::Value object = Parse(document);
    std::vector<Hardware> list;
    for (const Json::Value& entry : object["hardware"]) {
        list.push_back(ReadEntry(entry));
    }
    return list;
}

std::vector<Hardware> ReadHardwareByContract(const std::string& document) {
    const Json::Value object = Parse(document);
    std::vector<Hardware> list;
    for (const Json::Value& entry : object["hardware"]) {
        list.push_back(ReadEntry(Parse(entry.toStyledString())));
    }
    return list;
}

std::string WriteHardware(const std::string& document, const std::vector<Hardware>& list) {
    Json::Value object = Parse(document);
    Json::Value entries(Json::arrayValue);
    for (const Hardware& record : list) {
        Json::Value entry(Json::objectValue);
        for (const Field& field : fields) {
            entry[field.key] = record.*field.member;
        }
        entry["power"] = record.power;
        entries.append(std::move(entry));
    }
    object["hardware"] = std::move(entries);
    return object.toStyledString();
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
