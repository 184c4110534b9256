#include "registration/JsonReaders.h"
#include "registration/Members.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <utility>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

const std::string PRIInterface = "interface";
const std::string PRIPartNumber = "pn";
const std::string PRISWVer = "swver";

} // namespace

void HalcyrREST::PRInterface::InitFromJSON(const std::string& entry) {
    const Json::Value object = StringToJson(entry);
    *this = PRInterface();
    ReadString(object, PRIPartNumber, partNumber);
    ReadString(object, PRISWVer, swVer);
}

void HalcyrREST::PRInterface::InitFromRegJSON(const std::string& document) {
    const Json::Value object = StringToJson(document);
    const Json::Value& list = object[PRIInterface];
    if (list.isArray() && !list.empty()) {
        InitFromJSON(list[0].toStyledString());
    }
}

std::string HalcyrREST::PRInterface::UpdateJSON(const std::string& document) const {
    Json::Value object = StringToJson(document);
    if (partNumber.empty() && swVer.empty()) {
        object.removeMember(PRIInterface);
        return object.toStyledString();
    }
    Json::Value entry;
    WriteString(entry, PRIPartNumber, partNumber);
    WriteString(entry, PRISWVer, swVer);
    Json::Value list;
    list.append(std::move(entry));
    object[PRIInterface] = std::move(list);
    return object.toStyledString();
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
