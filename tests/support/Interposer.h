#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Stands between the library and the calls listed below, to record them and to make fail what no
/// server can make fail. Without an object of this class, and for calls not told otherwise, the
/// real functions run untouched. One object at a time; the library may use it from any thread.
///
/// The linker puts it there (--wrap, see tests/CMakeLists.txt): curl_easy_init, curl_easy_setopt,
/// curl_easy_perform, curl_easy_getinfo, curl_easy_cleanup, curl_multi_init,
/// curl_multi_add_handle, curl_multi_perform, curl_multi_timeout, curl_multi_fdset,
/// curl_multi_cleanup, curl_formadd, curl_formfree, curl_slist_append, curl_slist_free_all,
/// select, and Json::Reader::parse ("parse").
class Interposer {
public:
    Interposer();
    Interposer(const Interposer&) = delete;
    Interposer& operator=(const Interposer&) = delete;
    ~Interposer();

    /// Makes the nth such call from now on (1 is the next one) return `result` at once, without
    /// the real one. Pointers are returned as null, select() fails with EINTR.
    void Fail(const std::string& call, int result = 0, int nth = 1);

    /// Lets every curl_easy_perform() succeed without an exchange.
    void SkipPerform();

    /// What CURLINFO_CONNECT_TIME yields from now on, in seconds.
    void SetConnectTime(double seconds);

    /// The limit for the whole exchange that libcurl is given from now on, in milliseconds, in the
    /// place of the library's own.
    void ShortenTimeLimit(long milliseconds);

    /// What curl_multi_timeout() yields from now on, in milliseconds.
    void SetMultiTimeout(long milliseconds);

    /// Lets select() return 0 at once.
    void SkipSelect();

    /// Makes every Json::Reader::parse() throw a HalcyrREST::JSONParsingError.
    void ThrowFromParse(const std::string& message);

    /// Every call so far, in order: its name, for some followed by a blank and details:
    /// "curl_easy_setopt 13 301" (option and value; the value for strings and numbers only),
    /// "curl_formadd file 10010 /tmp/x" (part, form option, value),
    /// "curl_slist_append Expect:", "select 0 1 500000" (number of descriptors, seconds,
    /// microseconds).
    std::vector<std::string> Calls() const;

    /// The calls whose text begins so, in order.
    std::vector<std::string> CallsTo(const std::string& beginning) const;

    /// Handles, forms and header lists obtained so far and not released.
    int Unreleased() const;

    // For the functions that stand in between.
    static Interposer* Active();
    /// Records the call; the result to return instead of making it, if it is to fail.
    std::optional<int> Enter(const std::string& call, const std::string& details = {});
    void Count(int change);
    std::optional<double> ConnectTime() const;
    std::optional<long> TimeLimit() const;
    std::optional<long> MultiTimeout() const;
    std::optional<std::string> ParseMessage() const;

private:
    struct Failure {
        int result;
        int callsUntil;
    };

    mutable std::mutex mutex;
    std::map<std::string, Failure> failures;
    std::map<std::string, int> always;
    std::optional<double> connectTime;
    std::optional<long> timeLimit;
    std::optional<long> multiTimeout;
    std::optional<std::string> parseMessage;
    std::vector<std::string> calls;
    int unreleased = 0;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
