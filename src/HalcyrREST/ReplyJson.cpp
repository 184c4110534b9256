#include "HalcyrREST/ReplyJson.h"

#include "registration/JsonReaders.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <typeinfo>

namespace Brenmoor {
namespace TavoRemotingLib {

Json::Value ReplyToJson(const std::string& text, const std::string& failure,
                        const std::string& separator) {
    try {
        return StringToJson(text);
    } catch (const HalcyrREST::JSONParsingError& e) {
        throw HalcyrREST::JSONParsingError(failure + " (" + typeid(e).name() + separator +
                                           e.what() + ")\n");
    }
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
