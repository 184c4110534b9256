#include "registration/JsonReaders.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <iostream>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

const std::string PREGTag = "tag";
const std::string PREGDesc = "description";
const std::string PREGBoardAddress = "boardAddress";
const std::string PREGReportingAddress = "reportingAddress";
const std::string PREGCORBAName = "corbaName";
const std::string PREGHostID = "hostID";
// Known members that the library leaves to the server.
[[maybe_unused]] const std::string PREGDefaults = "defaults";
[[maybe_unused]] const std::string PREGEnabled = "enabled";
[[maybe_unused]] const std::string PREGGenAlarms = "generateAlarms";

Json::Value FileToJsonOrTell(const std::string& fileName) {
    try {
        return FileToJson(fileName);
    } catch (const std::exception& e) {
        std::cout << "PayloadRegistration(): " << e.what();
        throw;
    }
}

/// Null when the file cannot be read. That is deliberately no failure: the record alone makes a
/// document that registers the payload.
Json::Value FileToJsonOrNull(const std::string& fileName) {
    try {
        return FileToJson(fileName);
    } catch (const std::exception& e) {
        std::cout << "ToJSON: " << e.what() << std::endl;
        return Json::Value();
    }
}

void Read(const Json::Value& document, const std::string& key, std::string& field) {
    if (document.isMember(key)) {
        field = document[key].asString();
    }
}

void Read(const Json::Value& document, const std::string& key, std::uint16_t& field) {
    if (document.isMember(key)) {
        field = static_cast<std::uint16_t>(document[key].asUInt());
    }
}

} // namespace

HalcyrREST::PayloadRegistration::PayloadRegistration(const std::string& fileName) {
    const Json::Value document = FileToJsonOrTell(fileName);
    Read(document, PREGTag, tag);
    Read(document, PREGDesc, description);
    Read(document, PREGBoardAddress, boardAddress);
    Read(document, PREGReportingAddress, reportingAddress);
    Read(document, PREGCORBAName, corbaName);
    Read(document, PREGHostID, hostID);
}

std::string HalcyrREST::PayloadRegistration::ToJSON(const std::string& fileName) const {
    Json::Value document = FileToJsonOrNull(fileName);
    document[PREGTag] = tag;
    document[PREGDesc] = description;
    document[PREGBoardAddress] = Json::Int(boardAddress);
    document[PREGReportingAddress] = Json::Int(reportingAddress);
    document[PREGCORBAName] = corbaName;
    document[PREGHostID] = hostID;
    return document.toStyledString();
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
