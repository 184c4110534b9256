// docs/errors.md is exact: each of its messages is provoked here, and none is left out.

#include "docs/ErrorsPage.h"

#include "HalcyrREST/PollTest.h"
#include "support/ClosedPort.h"

#include <MirrinFramework/TempFile.h>

#include <cstdlib>
#include <cxxabi.h>
#include <functional>
#include <memory>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::PostFile;
using MirrinFramework::TempFile;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

/// The name of an exception's type as the page has it.
std::string TypeName(const std::exception& e) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(typeid(e).name(), nullptr, nullptr, &status), std::free);
    const std::string text = name.get();
    if (text == "std::__ios_failure") {
        return "std::ios_base::failure"; // which it is derived from, for an older binary interface
    }
    const std::string own = "Brenmoor::TavoRemotingLib::";
    return text.rfind(own, 0) == 0 ? text.substr(own.size()) : text;
}

class ErrorsPage : public PollTest {
protected:
    /// Expects that what the action throws is one row of the page, and notes the row.
    void Provoke(const std::function<void()>& action) {
        try {
            action();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::exception& e) {
            const std::string type = TypeName(e);
            std::size_t found = 0;
            for (std::size_t i = 0; i < rows.size(); ++i) {
                if (rows[i].Means(type, e.what())) {
                    provoked[i] = true;
                    ++found;
                }
            }
            EXPECT_EQ(found, 1U) << type << ": " << e.what();
        }
    }

    /// Turns a payload off, with that reply.
    void TurnOff(const std::string& reply) {
        const ScriptedServer server(reply);
        HalcyrREST(server.Address(), logger, false).TurnPayloadOff("P1");
    }

    /// The same where nobody answers, unless the call fails before.
    void TurnOff() {
        HalcyrREST(closed.Address(), logger, false).TurnPayloadOff("P1");
    }

    void Respond() {
        HalcyrREST(closed.Address(), logger, false).RespondToCommand("P1", "t", "a", true, true);
    }

    void Legacy(const std::string& file) {
        HalcyrREST(closed.Address(), logger, false).SendFileToShoreLegacy("P1", file, "");
    }

    /// A registration record made from a file with that content.
    void Register(const std::string& content) const {
        const HalcyrREST::PayloadRegistration record(MakeFile("r.json", content));
    }

    /// An upload through the multi interface, of which that call fails.
    void PostFailing(const std::string& call) {
        interposer.Fail(call, -1);
        const PostFile post("http://" + closed.Address(), "n", "c", false, false, 1);
    }

    void ProvokeAnyOperation();
    void ProvokeUploads();
    void ProvokePoll();
    void ProvokeParsing();
    void ProvokeRegistration();
    void ProvokePostFile();

    const ClosedPort closed;
    const std::vector<ErrorRow> rows = ErrorRows();
    std::vector<bool> provoked = std::vector<bool>(rows.size());
};

void ErrorsPage::ProvokeAnyOperation() {
    Provoke([&] { TurnOff(); });
    Provoke([&] {
        HalcyrREST client(closed.Address(), logger, false);
        client.Poll(ids, &commands, &gps, &shutdown, 2147422001, 1);
    });
    Provoke([&] {
        interposer.Fail("curl_easy_getinfo", CURLE_UNKNOWN_OPTION);
        TurnOff(OkReply(""));
    });
    Provoke([&] {
        interposer.Fail("curl_easy_init");
        TurnOff();
    });
    Provoke([&] { TurnOff("HTTP/1.1 404 Not Found\r\n\r\n"); });
    Provoke([&] { TurnOff("http/1.1 200 ok\r\n\r\n"); });
    Provoke([&] {
        interposer.Fail("curl_slist_append");
        Respond();
    });
    Provoke([&] {
        const ScriptedServer server(OkReply("no such switch"));
        HalcyrREST(server.Address(), logger, false).SetPayloadKELDSwitch("P1", true);
    });
    // From here on no exchange is made.
    interposer.SkipPerform();
    interposer.SetConnectTime(0);
    Provoke([&] { TurnOff(); });
    interposer.SetConnectTime(0.1);
    Provoke([&] { TurnOff(); });
}

void ErrorsPage::ProvokeUploads() {
    Provoke([&] {
        interposer.Fail("curl_formadd", 1);
        Respond();
    });
    Provoke([&] { Legacy(Folder() + "/none"); });
    Provoke([&] { Legacy(Folder() + "/" + std::string(300, 'x')); });
    Provoke([] {
        TempFile file(10);
        file.Close();
        file.Write(MirrinFramework::ByteArray("x", 1));
    });
    Provoke([] {
        const int next = dup(0);
        close(next);
        TempFile file(10); // has the lowest free descriptor
        close(next);
        file.Close();
    });
    Provoke([&] {
        setenv("TMPDIR", (Folder() + "/none").c_str(), 1);
        Respond();
    });
    setenv("TMPDIR", TempFolder().c_str(), 1);
}

void ErrorsPage::ProvokePoll() {
    Provoke([&] { PollFor(nullptr, nullptr, nullptr, ""); });
    for (const char* const body : {
             R"({"timeout":true})",
             "",
             R"({"error":"no such payload"})",
             R"({"commands":[]})",
             R"({"commands":[5]})",
             R"({"commands":[{"command":"'t'c"}]})",
             R"({"commands":[{"id":"P1"}]})",
             R"({"commands":[{"id":"P1","command":"c"}]})",
             "nope",
             R"({"timeout":"x"})",
         }) {
        Provoke([&] { Poll(body); });
    }
    Provoke([&] { Poll("\"a\":" + std::string(1001, '[')); });
}

void ErrorsPage::ProvokeParsing() {
    CaptureStdout();
    interposer.ThrowFromParse("inner");
    Provoke([&] { Poll("{}"); });
    Provoke([] { const HalcyrREST::RemoteCommand command("{}"); });
    Provoke([] { const HalcyrREST::GPSInfo position("{}"); });
    Provoke([&] { Register("{}"); });
    GetCapturedStdout();
}

void ErrorsPage::ProvokeRegistration() {
    CaptureStdout();
    Provoke([&] { const HalcyrREST::PayloadRegistration record(Folder() + "/none"); });
    Provoke([&] { const HalcyrREST::PayloadRegistration record("/proc"); });
    Provoke([&] { Register(std::string(32769, ' ')); });
    Provoke([&] { Register(R"({"hostID":{}})"); });
    Provoke([&] { Register(R"({"boardAddress":"1"})"); });
    Provoke([&] { Register(R"({"reportingAddress":-1})"); });
    GetCapturedStdout();
}

void ErrorsPage::ProvokePostFile() {
    for (const char* const call : {"curl_multi_init", "curl_multi_add_handle", "curl_multi_perform",
                                   "curl_multi_timeout", "curl_multi_fdset", "select"}) {
        Provoke([&] { PostFailing(call); });
    }
}

TEST_F(ErrorsPage, HasEveryMessageAndNoOther) {
    ASSERT_GT(rows.size(), 0U);
    ProvokePoll();
    ProvokeUploads();
    ProvokeRegistration();
    ProvokePostFile();
    ProvokeParsing();
    ProvokeAnyOperation();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_TRUE(provoked[i]) << rows[i].type << ": " << rows[i].message;
    }
}

TEST_F(ErrorsPage, HasTheTextsOfLibcurl) {
    if (std::string(curl_version()).rfind("libcurl/7.88.", 0) != 0) {
        GTEST_SKIP() << "the page has the texts of libcurl 7.88";
    }
    const std::vector<CodeRow> codes = CodeRows();
    EXPECT_GT(codes.size(), 0U);
    for (const CodeRow& row : codes) {
        EXPECT_EQ(row.text, curl_easy_strerror(static_cast<CURLcode>(row.code)));
    }
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
