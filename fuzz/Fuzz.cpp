#include "Fuzz.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <curl/curl.h>
#include <iostream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

void Require(bool condition, const char* text) {
    if (!condition) {
        std::fprintf(stderr, "a requirement does not hold: %s\n", text);
        std::abort();
    }
}

void RequireTag(const std::string& tag) {
    const bool hasBoth = tag.find('\'') != std::string::npos && tag.find('"') != std::string::npos;
    Require(!hasBoth, "a tag ends at the quote that it began with");
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor

// The two functions that libFuzzer calls, and the replay of a corpus likewise.
extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    std::signal(SIGPIPE, SIG_IGN);
    // Registration files that cannot be read are told there.
    std::cout.setstate(std::ios::failbit);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Brenmoor::TavoRemotingLib::Fuzzing;
    Try(size > 0 ? std::string(reinterpret_cast<const char*>(data), size) : std::string());
    return 0;
}
