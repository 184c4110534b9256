#include "registration/Text.h"

#include <TavoRemotingLib/HalcyrREST.h>

namespace Brenmoor {
namespace TavoRemotingLib {

void ExpectOKHeaders(const std::vector<std::string>& headers, const std::string& label) {
    for (const std::string& header : headers) {
        if (std::string_view(header).substr(0, 4) != "HTTP") {
            continue;
        }
        const std::string_view status = Trimmed(header);
        if (status.size() >= 3 && status.substr(status.size() - 3) == " OK") {
            return;
        }
        throw std::runtime_error("For " + label +
                                 ", the HTTP header did not return OK: " + std::string(status));
    }
    throw std::runtime_error("For " + label + ", no HTTP header was returned");
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
