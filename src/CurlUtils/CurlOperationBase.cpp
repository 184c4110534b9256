#include <TavoRemotingLib/CurlUtils.h>

#include <algorithm>
#include <ostream>
#include <type_traits>
#include <utility>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

// libcurl declares its callbacks with size_t. On the 32-bit target that is unsigned int.
static_assert(sizeof(void*) != 4 || std::is_same<std::size_t, unsigned int>::value,
              "libcurl's callbacks must take and return unsigned int on a 32-bit target");

namespace {

constexpr std::size_t usualHeaders = 12;
/// Room that short lines get, too: blocks of one size are found again at once, while the smallest
/// ones are what libcurl takes and gives back all the time.
constexpr std::size_t usualLine = 64;

/// ThrowEasy(), but the label becomes a string only for an error.
void Check(CURLcode code, const char* label) {
    if (code != CURLE_OK) {
        ThrowEasy(code, label);
    }
}

} // namespace

CurlOperationBase::CurlOperationBase(const std::string& requestUrl)
    : curl(nullptr), multi(nullptr), url(requestUrl), self(this) {}

CurlOperationBase::~CurlOperationBase() {
    cleanup();
}

void CurlOperationBase::InitCurl(bool useMulti) {
    curl = curl_easy_init();
    if (curl == nullptr) {
        throw std::runtime_error("curl_easy_init() failed");
    }
    if (useMulti) {
        multi = curl_multi_init();
        if (multi == nullptr) {
            throw std::runtime_error("curl_multi_init() failed");
        }
    }
    SetOpt(CURLOPT_WRITEFUNCTION, &WriteDataFunc);
    SetOpt(CURLOPT_HEADERFUNCTION, &WriteHeaderFunc);
    SetOpt(CURLOPT_WRITEHEADER, &self);
    SetOpt(CURLOPT_WRITEDATA, &self);
}

std::size_t CurlOperationBase::WriteDataFunc(char* data, std::size_t size, std::size_t count,
                                             void* userData) noexcept {
    return (*static_cast<CurlOperationBase**>(userData))->WriteData(data, size, count);
}

std::size_t CurlOperationBase::WriteHeaderFunc(void* data, std::size_t size, std::size_t count,
                                               void* userData) noexcept {
    return (*static_cast<CurlOperationBase**>(userData))->WriteHeader(data, size, count);
}

std::size_t CurlOperationBase::WriteData(char* data, std::size_t size, std::size_t count) noexcept {
    try {
        body.append(data, size * count);
        return size * count;
    } catch (...) {
        return 0;
    }
}

std::size_t CurlOperationBase::WriteHeader(void* data, std::size_t size,
                                           std::size_t count) noexcept {
    try {
        if (headers.empty()) {
            headers.reserve(usualHeaders); // one allocation instead of one for each doubling
        }
        const std::size_t length = size * count;
        std::string line;
        if (length > line.capacity()) {
            line.reserve(std::max(length, usualLine));
        }
        line.append(static_cast<const char*>(data), length); // cheaper than assign()
        headers.push_back(std::move(line));
        return length;
    } catch (...) {
        return 0;
    }
}

void CurlOperationBase::cleanup() noexcept {
    // The multi handle goes first and lets go of the easy handle by itself.
    if (multi != nullptr) {
        curl_multi_cleanup(multi);
        multi = nullptr;
    }
    if (curl != nullptr) {
        curl_easy_cleanup(curl);
        curl = nullptr;
    }
}

void CurlOperationBase::Perform() {
    Check(curl_easy_perform(curl), "curl_easy_perform");
    ThrowUnlessConnected();
    ThrowUnlessAnswered();
}

void CurlOperationBase::ThrowUnlessConnected() {
    double connectTime = -1.0;
    Check(curl_easy_getinfo(curl, CURLINFO_CONNECT_TIME, &connectTime), "curl_easy_getinfo()");
    if (connectTime <= 0.0) {
        throw ConnectionFailure("Failed to connect to " + url);
    }
}

void CurlOperationBase::ThrowUnlessAnswered() const {
    if (headers.empty()) {
        throw ServerDidNotRespond("No response from " + url);
    }
}

void CurlOperationBase::LogReply(MirrinFramework::Logger& logger) const {
    if (!logger.IsLevelEnabled(8)) {
        return;
    }
    const MirrinFramework::Logger::Locked locked(logger);
    std::ostream& out = *locked;
    out << std::endl << "Returned headers:" << std::endl << std::endl;
    for (const std::string& header : headers) {
        out << std::endl << header;
    }
    if (!headers.empty()) {
        out << std::endl;
    }
    // Turned to text here, so that neither a locale nor flags left on the stream change the digits.
    out << std::endl
        << "Returned data (" << std::to_string(body.size()) << "):" << std::endl
        << std::endl
        << body << std::endl;
    if (!body.empty()) {
        out << std::endl;
    }
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
