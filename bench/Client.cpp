#include "Clients.h"

#include <map>
#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

std::unique_ptr<Client> MakeClient(const std::string& name, const std::string& server) {
    static const std::map<std::string, std::unique_ptr<Client> (*)(const std::string&)> makers = {
        {"library", &MakeLibraryClient},   {"canary", &MakeCanaryClient},
        {"bare", &MakeBareClient},         {"file", &MakeFileClient},
        {"contract", &MakeContractClient}, {"curlpp", &MakeCurlppClient},
        {"poco", &MakePocoClient},         {"httplib", &MakeHttplibClient},
        {"beast", &MakeBeastClient}};
    const auto found = makers.find(name);
    if (found == makers.end()) {
        throw std::invalid_argument("there is no client " + name);
    }
    return found->second(server);
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
