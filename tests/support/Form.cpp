#include "support/Form.h"

#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

std::size_t Find(const std::string& text, const std::string& wanted, std::size_t from) {
    const std::size_t found = text.find(wanted, from);
    if (found == std::string::npos) {
        throw std::runtime_error("no '" + wanted + "' in: " + text);
    }
    return found;
}

} // namespace

std::string RequestHead(const std::string& request) {
    return request.substr(0, Find(request, "\r\n\r\n", 0) + 2);
}

std::string FormBoundary(const std::string& request) {
    const std::string name = "Content-Type: multipart/form-data; boundary=";
    const std::string head = RequestHead(request);
    const std::size_t begin = Find(head, name, 0) + name.size();
    return head.substr(begin, Find(head, "\r\n", begin) - begin);
}

std::vector<FormPart> FormParts(const std::string& request) {
    const std::string delimiter = "--" + FormBoundary(request);
    const std::string body = request.substr(RequestHead(request).size() + 2);
    if (body.compare(0, delimiter.size() + 2, delimiter + "\r\n") != 0) {
        throw std::runtime_error("the form does not begin with its boundary: " + body);
    }
    std::vector<FormPart> parts;
    std::size_t begin = delimiter.size() + 2;
    for (;;) {
        const std::size_t end = Find(body, "\r\n" + delimiter, begin);
        const std::size_t head = Find(body, "\r\n\r\n", begin) + 2;
        parts.push_back({body.substr(begin, head - begin), body.substr(head + 2, end - head - 2)});
        begin = end + 2 + delimiter.size();
        if (body.substr(begin) == "--\r\n") {
            return parts;
        }
        begin += 2;
    }
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
