#include <TavoRemotingLib/HalcyrREST.h>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>

namespace Brenmoor {
namespace TavoRemotingLib {

void ExpectOKHeaders(const std::vector<std::string>& headers, const std::string& label) {
    for (const std::string& header : headers) {
        if (!boost::algorithm::starts_with(header, "HTTP")) {
            continue;
        }
        const std::string status = boost::algorithm::trim_copy(header);
        if (boost::algorithm::ends_with(status, " OK")) {
            return;
        }
        throw std::runtime_error("For " + label + ", the HTTP header did not return OK: " + status);
    }
    throw std::runtime_error("For " + label + ", no HTTP header was returned");
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
