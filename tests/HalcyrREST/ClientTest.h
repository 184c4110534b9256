#pragma once

#include "CurlUtils/TransferTest.h"
#include "support/CapturingLogger.h"
#include "support/CleanTest.h"
#include "support/Form.h"
#include "support/Interposer.h"
#include "support/Requests.h"
#include "support/ScriptedServer.h"
#include "support/Throws.h"

#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A test of the client that must leave nothing behind, libcurl's objects included.
class ClientTest : public CleanTest {
protected:
    void TearDown() override {
        EXPECT_EQ(interposer.Unreleased(), 0) << "libcurl's objects were left";
        CleanTest::TearDown();
    }

    /// Expects that the one request was a GET of `target`.
    static void ExpectGet(const ScriptedServer& server, const std::string& target) {
        EXPECT_EQ(server.OnlyRequest(), GetRequest(server.Address(), target));
    }

    /// Expects that the one request uploaded the file `path` with exactly that content.
    static void ExpectFileUpload(const ScriptedServer& server, const std::string& target,
                                 const std::string& path, const std::string& content) {
        const std::string request = server.OnlyRequest();
        EXPECT_EQ(request,
                  UploadRequest(server.Address(), target, path, content, FormBoundary(request)));
    }

    /// Expects that the one request uploaded the text and a zero byte, from a temporary file.
    void ExpectTextUpload(const ScriptedServer& server, const std::string& target,
                          const std::string& text) const {
        const std::vector<FormPart> parts = FormParts(server.OnlyRequest());
        ASSERT_EQ(parts.size(), 3U);
        const std::string& path = parts[1].body;
        EXPECT_EQ(path.substr(0, path.rfind('/')), TempFolder());
        ExpectFileUpload(server, target, path, text + '\0');
    }

    Interposer interposer;
    CapturingLogger logger;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
