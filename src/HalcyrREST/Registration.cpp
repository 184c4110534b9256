#include "HalcyrREST/EncodeURL.h"
#include "registration/Text.h"

#include <TavoRemotingLib/HalcyrREST.h>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

/// A document travels without its outer braces and the white space around it; the reader puts the
/// braces back. A text that lacks one of them deliberately keeps the other.
std::string WithoutBraces(const std::string& document) {
    const std::string_view trimmed = Trimmed(document);
    return std::string(HasBraces(trimmed) ? trimmed.substr(1, trimmed.size() - 2) : trimmed);
}

} // namespace

std::string HalcyrREST::GetPayloadRegistrationContent(const std::string& fileName,
                                                      const PayloadRegistration& registration) {
    return registration.ToJSON(fileName);
}

void HalcyrREST::RegisterPayload(const std::string& id, const std::string& fileName,
                                 const PayloadRegistration& registration,
                                 const std::string& hostId) {
    RegisterPayloadWithContent(id, GetPayloadRegistrationContent(fileName, registration), hostId);
}

void HalcyrREST::RegisterPayloadWithContent(const std::string& id, const std::string& content,
                                            const std::string& hostId) {
    std::string address = Address("meta");
    if (!id.empty()) {
        AppendEncoded(address += "&id=", id);
    }
    if (!hostId.empty()) {
        AppendEncoded(address += "&hostid=", hostId);
    }
    Upload(address, WithoutBraces(content), false, "Payload Registration");
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
