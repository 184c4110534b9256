#include "Answering.h"

#include <Poco/Net/HTTPServerRequestImpl.h>
#include <Poco/StreamCopier.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/socket.h>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using Poco::Net::HTTPMessage;
using Poco::Net::HTTPServerRequest;
using Poco::Net::HTTPServerResponse;

// What is left of a refused request is read, up to here, before the answer is sent: a client in
// the middle of its upload would otherwise lose the answer.
constexpr std::streamsize mostUnreadBytes = std::streamsize{64} * 1024 * 1024;

bool HasKnownEnd(const HTTPServerRequest& request) {
    return request.hasContentLength() || request.getChunkedTransferEncoding() ||
           request.getMethod() != "POST";
}

Reply RefusalReply(const Refusal& refusal) {
    Reply reply;
    reply.status = refusal.status;
    reply.reason = refusal.reason;
    reply.allow = refusal.allow;
    reply.body = std::string(refusal.what()) + "\n";
    return reply;
}

} // namespace

Poco::Net::StreamSocket& SocketOf(HTTPServerRequest& request) {
    return dynamic_cast<Poco::Net::HTTPServerRequestImpl&>(request).socket();
}

bool IsPeerPresent(HTTPServerRequest& request) {
    char next = '\0';
    try {
        return SocketOf(request).receiveBytes(&next, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
    } catch (const Poco::TimeoutException&) {
        return true; // nothing to read, which is what a peer does that waits
    } catch (const Poco::Exception&) {
        return false;
    }
}

void RequirePlainFrame(const HTTPServerRequest& request) {
    if (request.getVersion() != HTTPMessage::HTTP_1_1 &&
        request.getVersion() != HTTPMessage::HTTP_1_0) {
        throw BadRequest("The request line does not end in HTTP/1.1 or HTTP/1.0");
    }
    if (!HasKnownEnd(request)) {
        throw Refusal(411, "Length Required", "The content has no length");
    }
}

Reply AnswerOrRefuse(const std::function<Reply()>& answer) {
    try {
        return answer();
    } catch (const Refusal& refusal) {
        return RefusalReply(refusal);
    } catch (const std::exception& failure) {
        return RefusalReply(Refusal(500, "Internal Server Error", failure.what()));
    }
}

bool Drain(HTTPServerRequest& request) {
    if (!HasKnownEnd(request)) {
        return false;
    }
    request.stream().ignore(mostUnreadBytes);
    return request.stream().eof() && !request.stream().bad();
}

void Send(const Reply& reply, HTTPServerResponse& response) {
    response.setVersion(HTTPMessage::HTTP_1_1);
    response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(reply.status),
                                reply.reason);
    if (!reply.allow.empty()) {
        response.set("Allow", reply.allow);
    }
    for (const auto& [name, value] : reply.headers) {
        response.set(name, value);
    }
    response.setContentType(reply.type);
    if (reply.stream) {
        response.set("Cache-Control", "no-store");
        response.setChunkedTransferEncoding(true);
        reply.stream(response.send());
        return;
    }
    std::istringstream text(reply.body);
    std::ifstream file;
    std::uintmax_t size = reply.body.size();
    if (!reply.filePath.empty()) {
        file.open(reply.filePath, std::ios::binary);
        size = std::filesystem::file_size(reply.filePath);
    }
    response.setContentLength64(static_cast<Poco::Int64>(size));
    std::ostream& out = response.send();
    Poco::StreamCopier::copyStream(reply.filePath.empty() ? static_cast<std::istream&>(text) : file,
                                   out);
    // Else it would go out after the exchange has ended.
    out.flush();
}

} // namespace TavoSimulator
} // namespace Brenmoor
