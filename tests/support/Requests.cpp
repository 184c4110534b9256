#include "support/Requests.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

std::string GetRequest(const std::string& address, const std::string& target) {
    return "GET " + target + " HTTP/1.1\r\nHost: " + address + "\r\nAccept: */*\r\n\r\n";
}

std::string UploadRequest(const std::string& address, const std::string& target,
                          const std::string& path, const std::string& content,
                          const std::string& boundary) {
    const std::string part = "--" + boundary + "\r\nContent-Disposition: form-data; ";
    const std::string body = part + "name=\"file\"; filename=\"" +
                             path.substr(path.rfind('/') + 1) +
                             "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + content +
                             "\r\n" + part + "name=\"filename\"\r\n\r\n" + path + "\r\n" + part +
                             "name=\"submit\"\r\n\r\nsend\r\n--" + boundary + "--\r\n";
    return "POST " + target + " HTTP/1.1\r\nHost: " + address +
           "\r\nAccept: */*\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nContent-Type: multipart/form-data; boundary=" + boundary + "\r\n\r\n" + body;
}

std::string Replaced(std::string text, const std::string& part, const std::string& replacement) {
    for (std::size_t at = text.find(part); at != std::string::npos;
         at = text.find(part, at + replacement.size())) {
        text.replace(at, part.size(), replacement);
    }
    return text;
}

std::string StatusReply(const std::string& status) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: 0\r\n\r\n";
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
