#include "registration/Text.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <boost/algorithm/string/predicate.hpp>

namespace Brenmoor {
namespace TavoRemotingLib {

void ExpectOKHeaders(const std::vector<std::string>& headers, const std::string& label) {
    for (const std::string& header : headers) {
        if (!boost::algorithm::starts_with(header, "HTTP")) {
            continue;
        }
        const std::string_view status = Trimmed(header);
        if (boost::algorithm::ends_with(status, " OK")) {
            return;
        }
        throw std::runtime_error("For " + label +
                                 ", the HTTP header did not return OK: " + std::string(status));
    }
    throw std::runtime_error("For " + label + ", no HTTP header was returned");
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
