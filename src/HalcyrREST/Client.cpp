#include "HalcyrREST/EncodeURL.h"

#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <utility>

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

/// Of every exchange but a poll.
constexpr long limitSeconds = 300;

constexpr std::size_t usualAddress = 200;

/// A GET that need not copy its address.
class Exchange : public CurlUtils::HttpGet {
public:
    Exchange(std::string&& address, MirrinFramework::Logger& logger, bool trace, long seconds)
        : HttpGet(logger, trace, seconds, std::move(address)) {}
};

} // namespace

HalcyrREST::HalcyrREST(const std::string& serverAddress, MirrinFramework::Logger& hostLogger,
                       bool trace)
    : server(serverAddress), verbose(trace), logger(hostLogger) {}

std::string HalcyrREST::Address(const char* operation) const {
    // Made with room for most addresses, so that they grow in place.
    std::string address;
    address.reserve(usualAddress);
    address += "http://";
    address += server;
    address += "/xp?op=";
    address += operation;
    return address;
}

std::string HalcyrREST::Address(const char* operation, const std::string& id) const {
    std::string address = Address(operation);
    AppendEncoded(address += "&id=", id);
    return address;
}

std::string HalcyrREST::Get(std::string&& address, const std::string& label) const {
    return Get(std::move(address), label, limitSeconds);
}

std::string HalcyrREST::Get(std::string&& address, const std::string& label,
                            long timeoutSeconds) const {
    Exchange transfer(std::move(address), logger, verbose, timeoutSeconds);
    ExpectOK(transfer, label);
    return std::move(transfer.body);
}

void HalcyrREST::Upload(const std::string& address, const std::string& content,
                        bool contentIsFileName, const std::string& label) const {
    const CurlUtils::PostFile2 transfer(address, "content", content, logger, contentIsFileName,
                                        verbose, limitSeconds);
    ExpectOK(transfer, label);
}

HalcyrREST::EmptyCommandException::EmptyCommandException(const std::string& message)
    : std::runtime_error(message) {}

HalcyrREST::EmptyCommandException::~EmptyCommandException() = default;

HalcyrREST::JSONParsingError::JSONParsingError(const std::string& message)
    : std::runtime_error(message) {}

HalcyrREST::JSONParsingError::~JSONParsingError() = default;

HalcyrREST::RemoteCommandFormatError::RemoteCommandFormatError(const std::string& message)
    : std::runtime_error(message) {}

HalcyrREST::RemoteCommandFormatError::~RemoteCommandFormatError() = default;

HalcyrREST::ServerTimeoutOnRequest::ServerTimeoutOnRequest(const std::string& message)
    : std::runtime_error(message) {}

HalcyrREST::ServerTimeoutOnRequest::~ServerTimeoutOnRequest() = default;

} // namespace TavoRemotingLib
} // namespace Brenmoor
