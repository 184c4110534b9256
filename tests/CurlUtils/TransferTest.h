#pragma once

#include "support/CapturingLogger.h"
#include "support/CleanTest.h"
#include "support/Interposer.h"
#include "support/ScriptedServer.h"
#include "support/Throws.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// What the log has of the reply OkReply("hello").
inline const std::string okDump = "\nReturned headers:\n\n"
                                  "\nHTTP/1.1 200 OK\r\n"
                                  "\nContent-Length: 5\r\n"
                                  "\n\r\n"
                                  "\n"
                                  "\nReturned data (5):\n\nhello\n\n";

/// Expects `action` to throw what a call of libcurl's easy interface that returned `code` leads to.
template <typename Action>
void ExpectEasyError(const Action& action, const std::string& label, int code) {
    const auto result = static_cast<CURLcode>(code);
    ExpectThrows<CurlUtils::CurlEasyException>(
        action,
        label + " returned " + std::to_string(code) + " (" + curl_easy_strerror(result) + ")",
        [&](const CurlUtils::CurlEasyException& e) { EXPECT_EQ(e.code, result); });
}

/// Likewise for the multi interface.
template <typename Action>
void ExpectMultiError(const Action& action, const std::string& label, int code) {
    const auto result = static_cast<CURLMcode>(code);
    ExpectThrows<CurlUtils::CurlMultiException>(
        action,
        label + " returned " + std::to_string(code) + " (" + curl_multi_strerror(result) + ")",
        [&](const CurlUtils::CurlMultiException& e) { EXPECT_EQ(e.code, result); });
}

/// Likewise for the form functions.
template <typename Action>
void ExpectFormError(const Action& action, int code) {
    ExpectThrows<CurlUtils::CurlFormException>(
        action, "curl_formadd() returned " + std::to_string(code),
        [&](const CurlUtils::CurlFormException& e) { EXPECT_EQ(static_cast<int>(e.code), code); });
}

/// The recorded calls behind the first `from` that release something, in order.
inline std::vector<std::string> Releases(const Interposer& interposer, std::size_t from = 0) {
    static const std::set<std::string> names{"curl_formfree", "curl_slist_free_all",
                                             "curl_multi_cleanup", "curl_easy_cleanup"};
    std::vector<std::string> found;
    const std::vector<std::string> calls = interposer.Calls();
    for (std::size_t i = from; i < calls.size(); ++i) {
        if (names.count(calls[i]) > 0) {
            found.push_back(calls[i]);
        }
    }
    return found;
}

/// `size` bytes, of which each depends on its position, with a period that is no power of 2.
inline std::string PositionedBytes(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>((i * 31 + i / 251) & 0xFFU);
    }
    return bytes;
}

/// A test of single transfers, which must leave nothing behind, libcurl's objects included.
class TransferTest : public CleanTest {
protected:
    void TearDown() override {
        EXPECT_EQ(interposer.Unreleased(), 0) << "libcurl's objects were left";
        CleanTest::TearDown();
    }

    /// The address that the transfers below ask for.
    static std::string Url(const ScriptedServer& server) {
        return "http://" + server.Address() + "/x";
    }

    CurlUtils::HttpGet Get(const std::string& url, long timeoutSeconds = 20) {
        return CurlUtils::HttpGet(url, logger, false, timeoutSeconds);
    }
    CurlUtils::PostFile2 Post2(const std::string& url, const std::string& content,
                               long timeoutSeconds = 20) {
        return CurlUtils::PostFile2(url, "content", content, logger, false, false, timeoutSeconds);
    }
    static CurlUtils::PostFile Post(const std::string& url, const std::string& content,
                                    long timeoutSeconds = 20) {
        return CurlUtils::PostFile(url, "content", content, false, false, timeoutSeconds);
    }

    Interposer interposer;
    CapturingLogger logger{{7, 8}};
};

/// A test of transfers with one server, which has ended all its work before the test is judged.
class ServedTest : public TransferTest {
protected:
    explicit ServedTest(Script script) : played(std::move(script)) {}

    void SetUp() override {
        TransferTest::SetUp();
        server.emplace(played);
    }
    void TearDown() override {
        server.reset();
        TransferTest::TearDown();
    }

    std::string Url() const {
        return TransferTest::Url(*server);
    }

    std::optional<ScriptedServer> server;

private:
    const Script played;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
