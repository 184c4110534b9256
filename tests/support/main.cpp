#include <csignal>
#include <curl/curl.h>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // As a host does before it starts threads, and as it must where sockets may be reset.
    curl_global_init(CURL_GLOBAL_DEFAULT);
    signal(SIGPIPE, SIG_IGN);
    const int result = RUN_ALL_TESTS();
    curl_global_cleanup();
    return result;
}
