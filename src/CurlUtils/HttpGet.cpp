#include "CurlUtils/TimeLimit.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <ostream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

HttpGet::HttpGet(const std::string& requestUrl, MirrinFramework::Logger& logger, bool trace,
                 long limitSeconds)
    : HttpGet(logger, trace, limitSeconds, std::string(requestUrl)) {}

HttpGet::HttpGet(MirrinFramework::Logger& logger, bool trace, long limitSeconds,
                 std::string&& requestUrl)
    : CurlOperationBase(std::string()), verbose(trace), timeoutSeconds(limitSeconds) {
    url.swap(requestUrl);
    *MirrinFramework::Logger::Locked(logger) << "HTTP GET " << url << std::endl;
    InitCurl(false);
    SetOpt(CURLOPT_URL, url.c_str());
    SetOpt(CURLOPT_NOPROGRESS, 1L);
    SetOpt(CURLOPT_NOSIGNAL, 1L);
    SetOpt(CURLOPT_CONNECTTIMEOUT, connectLimitSeconds);
    SetOpt(CURLOPT_TIMEOUT, WholeExchangeLimit(timeoutSeconds));
    SetOpt(CURLOPT_FTP_RESPONSE_TIMEOUT, timeoutSeconds);
    SetOpt(CURLOPT_VERBOSE, static_cast<long>(verbose));
    Perform();
    LogReply(logger);
}

HttpGet::~HttpGet() = default;

void HttpGet::Close() {
    if (curl != nullptr) {
        curl_easy_cleanup(curl);
        curl = nullptr;
    }
}

void HttpGet::DebugOut(std::ostream& out) const {
    // Numbers are turned to text here, so that neither a locale nor flags of `out` change them.
    out << std::to_string(headers.size()) << " Headers:" << std::endl;
    if (!headers.empty()) {
        out << std::endl;
    }
    std::size_t number = 0;
    for (const std::string& header : headers) {
        out << std::to_string(++number) << ") " << header << std::endl;
    }
    out << std::endl << std::to_string(body.size()) << " Body:" << std::endl;
    if (!body.empty()) {
        out << std::endl << body << std::endl;
    }
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
