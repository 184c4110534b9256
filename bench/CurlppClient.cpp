#include "Clients.h"
#include "HandClient.h"

#include <curlpp/Easy.hpp>
#include <curlpp/Form.hpp>
#include <curlpp/Infos.hpp>
#include <curlpp/Options.hpp>
#include <curlpp/cURLpp.hpp>
#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

std::string Perform(curlpp::Easy& request, const std::string& url) {
    std::ostringstream body;
    request.setOpt(curlpp::options::Url(url));
    request.setOpt(curlpp::options::WriteStream(&body));
    request.perform();
    ExpectStatusOK(curlpp::infos::ResponseCode::get(request));
    return body.str();
}

class CurlppClient : public HandClient {
public:
    explicit CurlppClient(const std::string& address) : server(address) {}

private:
    std::string Get(const std::string& target) override {
        curlpp::Easy request;
        return Perform(request, "http://" + server + target);
    }
    // The form takes its parts over.
    void PostContent(const std::string& target, const std::string& content) override {
        Post(target, new curlpp::FormParts::Content("file", content), "content");
    }
    void PostFile(const std::string& target, const std::string& fileName) override {
        Post(target, new curlpp::FormParts::File("file", fileName), fileName);
    }

    void Post(const std::string& target, curlpp::FormPart* file, const std::string& fileName) {
        curlpp::Forms parts;
        parts.push_back(file);
        parts.push_back(new curlpp::FormParts::Content("filename", fileName));
        parts.push_back(new curlpp::FormParts::Content("submit", "send"));
        curlpp::Easy request;
        request.setOpt(curlpp::options::HttpPost(parts));
        Perform(request, "http://" + server + target);
    }

    const curlpp::Cleanup cleanup;
    const std::string server;
};

} // namespace

std::unique_ptr<Client> MakeCurlppClient(const std::string& server) {
    return std::make_unique<CurlppClient>(server);
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
