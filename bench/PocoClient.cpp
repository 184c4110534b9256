#include "Clients.h"
#include "HandClient.h"

#include <Poco/Net/FilePartSource.h>
#include <Poco/Net/HTMLForm.h>
#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/HTTPResponse.h>
#include <Poco/Net/SocketAddress.h>
#include <Poco/Net/StringPartSource.h>
#include <Poco/StreamCopier.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

using namespace Poco::Net;

std::string Receive(HTTPClientSession& session) {
    HTTPResponse response;
    std::istream& in = session.receiveResponse(response);
    std::string body;
    Poco::StreamCopier::copyToString(in, body);
    ExpectStatusOK(response.getStatus());
    return body;
}

class PocoClient : public HandClient {
public:
    explicit PocoClient(const std::string& address) : server(address) {}

private:
    std::string Get(const std::string& target) override {
        HTTPClientSession session(server);
        HTTPRequest request(HTTPRequest::HTTP_GET, target, HTTPMessage::HTTP_1_1);
        session.sendRequest(request);
        return Receive(session);
    }
    // The form takes its parts over.
    void PostContent(const std::string& target, const std::string& content) override {
        Post(target, new StringPartSource(content, "application/octet-stream", "content"),
             "content");
    }
    void PostFile(const std::string& target, const std::string& fileName) override {
        Post(target, new FilePartSource(fileName), fileName);
    }

    void Post(const std::string& target, PartSource* file, const std::string& fileName) {
        HTMLForm form(HTMLForm::ENCODING_MULTIPART);
        form.addPart("file", file);
        form.set("filename", fileName);
        form.set("submit", "send");
        HTTPRequest request(HTTPRequest::HTTP_POST, target, HTTPMessage::HTTP_1_1);
        form.prepareSubmit(request);
        HTTPClientSession session(server);
        form.write(session.sendRequest(request));
        Receive(session);
    }

    const SocketAddress server;
};

} // namespace

std::unique_ptr<Client> MakePocoClient(const std::string& server) {
    return std::make_unique<PocoClient>(server);
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
