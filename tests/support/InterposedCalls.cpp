// The functions that the linker calls in place of the real ones; see Interposer.h.

#include "support/Interposer.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <cerrno>
#include <cstdarg>
#include <curl/curl.h>
#include <sys/select.h>

namespace Json {
class Reader;
class Value;
} // namespace Json

namespace {

using Brenmoor::TavoRemotingLib::HalcyrREST;
using Brenmoor::TavoRemotingLib::Testing::Interposer;

/// Records the call if anyone listens, and says what to return in its place if it is to fail.
std::optional<int> Enter(const char* call, const std::string& details = {}) {
    Interposer* const interposer = Interposer::Active();
    return interposer != nullptr ? interposer->Enter(call, details) : std::nullopt;
}

void Count(int change) {
    if (Interposer* const interposer = Interposer::Active()) {
        interposer->Count(change);
    }
}

template <typename Handle>
Handle* Counted(Handle* made) {
    Count(made != nullptr ? 1 : 0);
    return made;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's --wrap fixes these names.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized): does not see va_start() set its argument.
extern "C" {

CURL* __real_curl_easy_init();
CURL* __wrap_curl_easy_init() {
    return Enter("curl_easy_init") ? nullptr : Counted(__real_curl_easy_init());
}

CURLcode __real_curl_easy_setopt(CURL* handle, CURLoption option, ...);
// The last named parameter is an int, since va_start() must not be given an enumeration.
CURLcode __wrap_curl_easy_setopt(CURL* handle, int optionNumber, ...) {
    const auto option = static_cast<CURLoption>(optionNumber);
    va_list arguments;
    va_start(arguments, optionNumber);
    const bool isNumber = option < CURLOPTTYPE_OBJECTPOINT;
    // Read as libcurl reads it.
    const long number = isNumber ? va_arg(arguments, long) : 0;
    void* const pointer = isNumber ? nullptr : va_arg(arguments, void*);
    va_end(arguments);
    std::string details = std::to_string(option);
    if (isNumber) {
        details += " " + std::to_string(number);
    } else if (option == CURLOPT_URL) {
        details += " " + std::string(static_cast<const char*>(pointer));
    }
    if (const auto result = Enter("curl_easy_setopt", details)) {
        return static_cast<CURLcode>(*result);
    }
    const Interposer* const interposer = Interposer::Active();
    if (interposer != nullptr && option == CURLOPT_TIMEOUT && interposer->TimeLimit()) {
        return __real_curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, *interposer->TimeLimit());
    }
    return isNumber ? __real_curl_easy_setopt(handle, option, number)
                    : __real_curl_easy_setopt(handle, option, pointer);
}

CURLcode __real_curl_easy_perform(CURL* handle);
CURLcode __wrap_curl_easy_perform(CURL* handle) {
    const auto result = Enter("curl_easy_perform");
    return result ? static_cast<CURLcode>(*result) : __real_curl_easy_perform(handle);
}

CURLcode __real_curl_easy_getinfo(CURL* handle, CURLINFO info, ...);
CURLcode __wrap_curl_easy_getinfo(CURL* handle, int infoNumber, ...) {
    const auto info = static_cast<CURLINFO>(infoNumber);
    va_list arguments;
    va_start(arguments, infoNumber);
    void* const out = va_arg(arguments, void*);
    va_end(arguments);
    if (const auto result = Enter("curl_easy_getinfo", std::to_string(info))) {
        return static_cast<CURLcode>(*result);
    }
    const CURLcode code = __real_curl_easy_getinfo(handle, info, out);
    Interposer* const interposer = Interposer::Active();
    if (interposer != nullptr && info == CURLINFO_CONNECT_TIME && interposer->ConnectTime()) {
        *static_cast<double*>(out) = *interposer->ConnectTime();
    }
    return code;
}

void __real_curl_easy_cleanup(CURL* handle);
void __wrap_curl_easy_cleanup(CURL* handle) {
    Enter("curl_easy_cleanup");
    Count(-1);
    __real_curl_easy_cleanup(handle);
}

CURLM* __real_curl_multi_init();
CURLM* __wrap_curl_multi_init() {
    return Enter("curl_multi_init") ? nullptr : Counted(__real_curl_multi_init());
}

CURLMcode __real_curl_multi_add_handle(CURLM* multi, CURL* handle);
CURLMcode __wrap_curl_multi_add_handle(CURLM* multi, CURL* handle) {
    const auto result = Enter("curl_multi_add_handle");
    return result ? static_cast<CURLMcode>(*result) : __real_curl_multi_add_handle(multi, handle);
}

CURLMcode __real_curl_multi_perform(CURLM* multi, int* running);
CURLMcode __wrap_curl_multi_perform(CURLM* multi, int* running) {
    const auto result = Enter("curl_multi_perform");
    return result ? static_cast<CURLMcode>(*result) : __real_curl_multi_perform(multi, running);
}

CURLMcode __real_curl_multi_timeout(CURLM* multi, long* milliseconds);
CURLMcode __wrap_curl_multi_timeout(CURLM* multi, long* milliseconds) {
    if (const auto result = Enter("curl_multi_timeout")) {
        return static_cast<CURLMcode>(*result);
    }
    const CURLMcode code = __real_curl_multi_timeout(multi, milliseconds);
    Interposer* const interposer = Interposer::Active();
    if (interposer != nullptr && interposer->MultiTimeout()) {
        *milliseconds = *interposer->MultiTimeout();
    }
    return code;
}

CURLMcode __real_curl_multi_fdset(CURLM* multi, fd_set* read, fd_set* write, fd_set* exception,
                                  int* maxFd);
CURLMcode __wrap_curl_multi_fdset(CURLM* multi, fd_set* read, fd_set* write, fd_set* exception,
                                  int* maxFd) {
    const auto result = Enter("curl_multi_fdset");
    return result ? static_cast<CURLMcode>(*result)
                  : __real_curl_multi_fdset(multi, read, write, exception, maxFd);
}

CURLMcode __real_curl_multi_cleanup(CURLM* multi);
CURLMcode __wrap_curl_multi_cleanup(CURLM* multi) {
    Enter("curl_multi_cleanup");
    Count(-1);
    return __real_curl_multi_cleanup(multi);
}

CURLFORMcode __real_curl_formadd(curl_httppost** first, curl_httppost** last, ...);
CURLFORMcode __wrap_curl_formadd(curl_httppost** first, curl_httppost** last, ...) {
    // The one shape in which the library calls it: a part's name, an option, its value, the end.
    va_list arguments;
    va_start(arguments, last);
    const int nameOption = va_arg(arguments, int);
    const char* const name = va_arg(arguments, const char*);
    const int option = va_arg(arguments, int);
    const char* const value = va_arg(arguments, const char*);
    const int end = va_arg(arguments, int);
    va_end(arguments);
    const std::string details = std::string(name) + " " + std::to_string(option) + " " + value;
    if (const auto result = Enter("curl_formadd", details)) {
        return static_cast<CURLFORMcode>(*result);
    }
    const bool isNew = *first == nullptr;
    const CURLFORMcode code =
        __real_curl_formadd(first, last, nameOption, name, option, value, end);
    Count(isNew && *first != nullptr ? 1 : 0);
    return code;
}

void __real_curl_formfree(curl_httppost* form);
void __wrap_curl_formfree(curl_httppost* form) {
    Enter("curl_formfree");
    Count(-1);
    __real_curl_formfree(form);
}

curl_slist* __real_curl_slist_append(curl_slist* list, const char* text);
curl_slist* __wrap_curl_slist_append(curl_slist* list, const char* text) {
    if (Enter("curl_slist_append", text)) {
        return nullptr;
    }
    curl_slist* const longer = __real_curl_slist_append(list, text);
    Count(list == nullptr && longer != nullptr ? 1 : 0);
    return longer;
}

void __real_curl_slist_free_all(curl_slist* list);
void __wrap_curl_slist_free_all(curl_slist* list) {
    Enter("curl_slist_free_all");
    Count(-1);
    __real_curl_slist_free_all(list);
}

int __real_select(int count, fd_set* read, fd_set* write, fd_set* exception, timeval* timeout);
int __wrap_select(int count, fd_set* read, fd_set* write, fd_set* exception, timeval* timeout) {
    const std::string details = std::to_string(count) + " " + std::to_string(timeout->tv_sec) +
                                " " + std::to_string(timeout->tv_usec);
    if (const auto result = Enter("select", details)) {
        errno = EINTR;
        return *result;
    }
    return __real_select(count, read, write, exception, timeout);
}

// Json::Reader::parse(const char*, const char*, Json::Value&, bool), a member function, whose
// object is its first argument.
#define PARSE(prefix) prefix##_ZN4Json6Reader5parseEPKcS2_RNS_5ValueEb
bool PARSE(__real_)(Json::Reader* reader, const char* begin, const char* end, Json::Value& root,
                    bool comments);
bool PARSE(__wrap_)(Json::Reader* reader, const char* begin, const char* end, Json::Value& root,
                    bool comments) {
    const Interposer* const interposer = Interposer::Active();
    if (interposer != nullptr && interposer->ParseMessage()) {
        throw HalcyrREST::JSONParsingError(*interposer->ParseMessage());
    }
    return PARSE(__real_)(reader, begin, end, root, comments);
}

} // extern "C"
// NOLINTEND(clang-analyzer-valist.Uninitialized)
// NOLINTEND(bugprone-reserved-identifier)
