#include <TavoRemotingLib/CurlUtils.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

namespace {

std::string Describe(const std::string& label, int code, const char* text) {
    return label + " returned " + std::to_string(code) + " (" + text + ")";
}

} // namespace

CurlEasyException::CurlEasyException(CURLcode result, const std::string& message)
    : std::runtime_error(message), code(result) {}

CurlEasyException::~CurlEasyException() = default;

CurlFormException::CurlFormException(CURLFORMcode result, const std::string& message)
    : std::runtime_error(message), code(result) {}

CurlFormException::~CurlFormException() = default;

CurlMultiException::CurlMultiException(CURLMcode result, const std::string& message)
    : std::runtime_error(message), code(result) {}

CurlMultiException::~CurlMultiException() = default;

ConnectionFailure::ConnectionFailure(const std::string& message) : std::runtime_error(message) {}

ConnectionFailure::~ConnectionFailure() = default;

ServerDidNotRespond::ServerDidNotRespond(const std::string& message)
    : std::runtime_error(message) {}

ServerDidNotRespond::~ServerDidNotRespond() = default;

void ThrowEasy(CURLcode code, const std::string& label) {
    if (code != CURLE_OK) {
        throw CurlEasyException(code, Describe(label, code, curl_easy_strerror(code)));
    }
}

void ThrowMulti(CURLMcode code, const std::string& label) {
    if (code != CURLM_OK) {
        throw CurlMultiException(code, Describe(label, code, curl_multi_strerror(code)));
    }
}

void ThrowFormAddError(CURLFORMcode code) {
    // Compared with 0, since libcurl has deprecated the enumerators along with its form functions.
    if (code != 0) {
        throw CurlFormException(code, "curl_formadd() returned " + std::to_string(code));
    }
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
