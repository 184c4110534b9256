// Any bytes as a server's whole reply, over a real connection, to each kind of transfer.

#include "Fuzz.h"
#include "support/ReplyServer.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

constexpr long limitSeconds = 60;

struct Outcome {
    std::string error;
    std::vector<std::string> headers;
    std::string body;
};

/// Makes the transfer. Besides a reply there is one of two exceptions, and no other.
template <typename Transfer>
Outcome Make(const Transfer& transfer) {
    try {
        const auto done = transfer();
        Require(!done.headers.empty(), "a transfer that succeeded has a header line");
        return {"", done.headers, done.body};
    } catch (const CurlUtils::CurlEasyException& e) {
        Require(e.code != CURLE_OPERATION_TIMEDOUT, "a closed connection ends the transfer");
        return {e.what(), {}, ""};
    } catch (const CurlUtils::ServerDidNotRespond& e) {
        return {e.what(), {}, ""};
    }
}

bool IsSubsequence(const std::string& part, const std::string& whole) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < whole.size() && found < part.size(); ++i) {
        found += whole[i] == part[found] ? 1U : 0U;
    }
    return found == part.size();
}

} // namespace

void Try(const std::string& input) {
    static Testing::ReplyServer server;
    server.Serve(input);
    const std::string url = "http://" + server.Address() + "/x";
    std::ostringstream log;
    MirrinFramework::Logger logger(log, 8);

    const Outcome got = Make([&] { return CurlUtils::HttpGet(url, logger, false, limitSeconds); });
    const Outcome posted = Make(
        [&] { return CurlUtils::PostFile2(url, "n", "c", logger, false, false, limitSeconds); });
    const Outcome multi =
        Make([&] { return CurlUtils::PostFile(url, "n", "c", false, false, limitSeconds); });

    Require(IsSubsequence(got.body, input), "the body is made of the reply's bytes");
    Require(posted.error == got.error, "an upload fails as a GET does");
    Require(posted.headers == got.headers && posted.body == got.body,
            "an upload has the reply that a GET has");
    if (got.error.empty()) {
        Require(multi.headers == got.headers && multi.body == got.body,
                "the multi interface has the reply that a GET has");
    }
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
