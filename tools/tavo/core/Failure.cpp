#include "core/Failure.h"

#include "core/Text.h"

#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <cstring>
#include <json/json.h>
#include <new>
#include <system_error>

namespace Brenmoor {
namespace Tavo {

namespace {

using TavoRemotingLib::HalcyrREST;
namespace CurlUtils = TavoRemotingLib::CurlUtils;

const char seeReply[] = "see it with -vv";

Failure CurlFailure(CURLcode code, const std::string& server, const std::string& message) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_PROXY:
        return {ExitCode::NoConnection, "the proxy for " + server + " has no address: " + message,
                "check http_proxy and all_proxy in the environment"};
    case CURLE_COULDNT_RESOLVE_HOST:
        return {ExitCode::NoConnection, "the name of " + server + " has no address: " + message,
                "check --server"};
    case CURLE_COULDNT_CONNECT:
        return {ExitCode::NoConnection, "no connection to " + server + ": " + message,
                "check --server, and that the server runs"};
    case CURLE_SEND_ERROR:
        return {ExitCode::NoConnection, "the connection to " + server + " broke: " + message,
                "try again"};
    case CURLE_OPERATION_TIMEDOUT:
        return {ExitCode::TimedOut, "no answer from " + server + " in time: " + message,
                "try again"};
    case CURLE_URL_MALFORMAT:
        return {ExitCode::Usage, "'" + server + "' is not an address: " + message,
                "write it as HOST or HOST:PORT"};
    case CURLE_READ_ERROR:
        return {ExitCode::Local, "the file to send to " + server + " cannot be read: " + message,
                "check the file"};
    case CURLE_OUT_OF_MEMORY:
        // Said of a header line above libcurl's limit, too, which is the likelier cause.
        return {ExitCode::BadReply, "too much from " + server + ", or no memory: " + message,
                "see it with --trace"};
    default:
        return {ExitCode::BadReply, "broken reply from " + server + ": " + message,
                "see it with --trace"};
    }
}

/// What follows `mark` in `text`, if it is there.
bool After(const std::string& text, const std::string& mark, std::string& rest) {
    const std::size_t begin = text.find(mark);
    if (begin == std::string::npos) {
        return false;
    }
    rest = text.substr(begin + mark.size());
    return true;
}

/// The library tells refusals by their text alone.
Failure ServerFailure(const std::string& server, const std::string& message) {
    std::string rest;
    if (After(message, ", the HTTP header did not return OK: ", rest)) {
        return {ExitCode::Refused, server + " refused: " + rest, "see its answer with -vv"};
    }
    if (After(message, "Poll operation returned error from server: ", rest)) {
        return {ExitCode::Refused, server + " could not serve the poll: " + rest, "poll again"};
    }
    if (After(message, "Server operation returned '", rest)) {
        return {ExitCode::Refused,
                server + " answered '" + rest.substr(0, rest.rfind("' for ")) + "' instead of OK",
                "check the switch's name"};
    }
    return {ExitCode::BadReply, "the reply of " + server + " is not understood: " + message,
            seeReply};
}

template <typename Exception>
const Exception* As(const std::exception& error) {
    return dynamic_cast<const Exception*>(&error);
}

} // namespace

LocalError FileError(const std::string& action, const std::string& path, int error) {
    return {"cannot " + action + " '" + path + "': " + std::generic_category().message(error),
            "check the path"};
}

std::string Failure::Line() const {
    return OneLine(hint.empty() ? what : OneLine(what) + "; " + hint);
}

Failure FailureOf(const std::exception& error, const std::string& server) {
    const std::string message = error.what();
    if (const auto* const usage = As<UsageError>(error)) {
        return {ExitCode::Usage, message, usage->hint};
    }
    if (const auto* const local = As<LocalError>(error)) {
        return {ExitCode::Local, message, local->hint};
    }
    if (As<HalcyrREST::ServerTimeoutOnRequest>(error) != nullptr) {
        return {ExitCode::TimedOut, "nothing happened at " + server + " in the poll's time",
                "poll again"};
    }
    if (const auto* const curl = As<CurlUtils::CurlEasyException>(error)) {
        return CurlFailure(curl->code, server, message);
    }
    if (As<CurlUtils::ConnectionFailure>(error) != nullptr) {
        return CurlFailure(CURLE_COULDNT_CONNECT, server, message);
    }
    if (As<CurlUtils::CurlFormException>(error) != nullptr ||
        As<std::system_error>(error) != nullptr || As<std::bad_alloc>(error) != nullptr) {
        return {ExitCode::Local, "cannot prepare what is to be sent: " + message,
                "check TMPDIR, free memory and room"};
    }
    if (As<std::logic_error>(error) != nullptr) {
        return {ExitCode::Local, message, "check the argument"};
    }
    if (As<std::runtime_error>(error) != nullptr || As<Json::Exception>(error) != nullptr) {
        return ServerFailure(server, message);
    }
    return {ExitCode::Other, message, {}};
}

} // namespace Tavo
} // namespace Brenmoor
