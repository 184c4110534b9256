#include "registration/JsonReaders.h"
#include "registration/Members.h"
#include "registration/StyledText.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <utility>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

const std::string PRHHardware = "hardware";
const std::string PRHManufacturer = "manufacturer";
const std::string PRHModel = "model";
const std::string PRHPartNumber = "pn";
const std::string PRHSerialNumber = "serial";
const std::string PRHSWVer = "swver";
const std::string PRHTTY = "tty";
const std::string PRHPower = "power";
const std::string PRHKELDPower = "connector";

/// The entry's members that hold something; null for a blank record.
Json::Value ToEntry(const HalcyrREST::PRHardware& record) {
    Json::Value entry;
    WriteString(entry, PRHManufacturer, record.manufacturer);
    WriteString(entry, PRHModel, record.model);
    WriteString(entry, PRHPartNumber, record.partNumber);
    WriteString(entry, PRHSerialNumber, record.serialNumber);
    WriteString(entry, PRHSWVer, record.swVer);
    WriteString(entry, PRHTTY, record.tty);
    if (record.hasPower) {
        entry[PRHPower] = record.power;
    }
    WriteString(entry, PRHKELDPower, record.connector);
    return entry;
}

} // namespace

void HalcyrREST::PRHardware::InitFromJSON(const std::string& entry) {
    *this = PRHardware();
    const Json::Value object = StringToJson(entry);
    ReadString(object, PRHManufacturer, manufacturer);
    ReadString(object, PRHModel, model);
    ReadString(object, PRHPartNumber, partNumber);
    ReadString(object, PRHSerialNumber, serialNumber);
    ReadString(object, PRHSWVer, swVer);
    ReadString(object, PRHTTY, tty);
    const Json::Value& powerMember = object[PRHPower];
    if (powerMember.isInt()) {
        power = powerMember.asInt();
        hasPower = true;
    }
    ReadString(object, PRHKELDPower, connector);
}

void HalcyrREST::PRHardware::InitFromRegJSON(const std::string& document,
                                             std::vector<PRHardware>& list) {
    const Json::Value object = StringToJson(document);
    const Json::Value& entries = object[PRHHardware];
    list.clear();
    if (!entries.isArray()) {
        return;
    }
    StyledText styled;
    for (const Json::Value& entry : entries) {
        PRHardware record;
        record.InitFromJSON(styled.Of(entry));
        list.push_back(std::move(record));
    }
}

std::string HalcyrREST::PRHardware::UpdateJSON(const std::string& document,
                                               const std::vector<PRHardware>& list) {
    Json::Value object = StringToJson(document);
    if (list.empty()) {
        object.removeMember(PRHHardware);
        return object.toStyledString();
    }
    // Stays null when every record is blank: "hardware": null tells the server so, and differs
    // deliberately from an empty list.
    Json::Value entries;
    for (const PRHardware& record : list) {
        Json::Value entry = ToEntry(record);
        if (!entry.isNull()) {
            entries.append(std::move(entry));
        }
    }
    object[PRHHardware] = std::move(entries);
    return object.toStyledString();
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
