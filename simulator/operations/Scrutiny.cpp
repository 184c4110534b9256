#include "Scrutiny.h"
#include "wire/EscapedText.h"

#include <Poco/String.h>
#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr std::size_t mostFlags = 20;

std::string Named(const std::string& name) {
    constexpr std::size_t most = 40;
    return "header '" + Escape(name.substr(0, most)) + "'";
}

bool Is(const std::string& name, const char* wanted) {
    return Poco::icompare(name, wanted) == 0;
}

/// What is wrong with one header line; empty for nothing.
std::string HeaderFault(const std::string& name, const std::string& value, bool isPost) {
    if (Is(name, "Host")) {
        return value.empty() ? "is empty" : "";
    }
    if (Is(name, "Accept")) {
        return value == "*/*" ? "" : "is not '*/*'";
    }
    if (isPost && Is(name, "Content-Type")) {
        const bool isForm = value.rfind("multipart/form-data; boundary=", 0) == 0;
        return isForm ? "" : "is not that of a form";
    }
    if (isPost && Is(name, "Transfer-Encoding")) {
        return value == "chunked" ? "" : "is not 'chunked'";
    }
    return isPost && Is(name, "Content-Length") ? "" : "is not sent by the client";
}

class HeaderWatch {
public:
    explicit HeaderWatch(const RequestHead& theHead)
        : head(theHead), isPost(head.method == "POST") {}

    std::vector<std::string> Flags() {
        for (const auto& [name, value] : head.headers) {
            const std::string fault = HeaderFault(name, value, isPost);
            if (!fault.empty()) {
                flags.push_back(Named(name) + " " + fault);
            }
        }
        Expect("Host");
        Expect("Accept");
        if (isPost) {
            Expect("Content-Type");
            if (Count("Transfer-Encoding") == 0) {
                Expect("Content-Length");
            }
        }
        return std::move(flags);
    }

private:
    std::ptrdiff_t Count(const char* name) const {
        return std::count_if(head.headers.begin(), head.headers.end(),
                             [name](const auto& header) { return Is(header.first, name); });
    }

    void Expect(const char* name) {
        if (Count(name) != 1) {
            flags.push_back(Named(name) + (Count(name) == 0 ? " is missing" : " is repeated"));
        }
    }

    const RequestHead& head;
    const bool isPost;
    std::vector<std::string> flags;
};

std::vector<std::string> TargetFlags(const RequestHead& head) {
    const std::size_t mark = std::min(head.target.find('?'), head.target.size());
    if (head.target.substr(0, mark) != "/xp") {
        return {"the path is not '/xp'"};
    }
    return QueryFlags(head.method, head.target.substr(std::min(mark + 1, head.target.size())));
}

} // namespace

std::vector<std::string> HeadFlags(const RequestHead& head) {
    std::vector<std::string> flags;
    if (head.version != "HTTP/1.1") {
        flags.emplace_back("the version is not HTTP/1.1");
    }
    if (head.connectionUsed) {
        flags.emplace_back("the connection was used before");
    }
    for (const std::string& flag : TargetFlags(head)) {
        AddFlag(flags, flag);
    }
    for (const std::string& flag : HeaderWatch(head).Flags()) {
        AddFlag(flags, flag);
    }
    return flags;
}

void AddFlag(std::vector<std::string>& flags, const std::string& flag) {
    if (flags.size() < mostFlags && std::find(flags.begin(), flags.end(), flag) == flags.end()) {
        flags.push_back(flag);
    }
}

} // namespace TavoSimulator
} // namespace Brenmoor
