#include "HalcyrREST/ClientTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class ControlUpload : public ClientTest {
protected:
    /// Expects that the answer to a command goes to `target`.
    void ExpectRespondTarget(const std::string& target, const std::string& id,
                             const std::string& tag, bool complete, bool succeeded) {
        const ScriptedServer server(OkReply("ignored"));
        HalcyrREST(server.Address(), logger, false)
            .RespondToCommand(id, tag, "text", complete, succeeded);
        ExpectTextUpload(server, target, "text");
    }

    void ExpectRespondText(const std::string& text) {
        const ScriptedServer server(OkReply(""));
        HalcyrREST(server.Address(), logger, false).RespondToCommand("P1", "t", text, true, true);
        ExpectTextUpload(server, "/xp?op=reply&id=P1&tag=t", text);
    }
};

TEST_F(ControlUpload, ResponseThatIsCompleteAndSucceededHasNoFlag) {
    ExpectRespondTarget("/xp?op=reply&id=P1&tag=t17", "P1", "t17", true, true);
}

TEST_F(ControlUpload, IncompleteResponseHasItsFlagOnly) {
    ExpectRespondTarget("/xp?op=reply&id=P1&tag=t17&complete=false", "P1", "t17", false, true);
}

TEST_F(ControlUpload, FailedResponseHasItsFlagOnly) {
    ExpectRespondTarget("/xp?op=reply&id=P1&tag=t17&succeeded=false", "P1", "t17", true, false);
}

TEST_F(ControlUpload, IncompleteAndFailedResponseHasBothFlagsInOrder) {
    ExpectRespondTarget("/xp?op=reply&id=P1&tag=t17&complete=false&succeeded=false", "P1", "t17",
                        false, false);
}

TEST_F(ControlUpload, AmpersandIsEscapedInTheTagAndNotInTheIdentifier) {
    ExpectRespondTarget("/xp?op=reply&id=P&1=%2F&tag=a%26b%3D%20c", "P&1=%2F", "a&b= c", true,
                        true);
}

TEST_F(ControlUpload, EmptyIdentifierAndTagAreSentEmpty) {
    ExpectRespondTarget("/xp?op=reply&id=&tag=", "", "", true, true);
}

TEST_F(ControlUpload, BlankInTheIdentifierGoesOutUnescapedAndMakesNoUrl) {
    ExpectEasyError(
        [&] { HalcyrREST("h:1", logger, false).RespondToCommand("P 1", "t 1", "x", true, true); },
        "curl_easy_perform", CURLE_URL_MALFORMAT);
    EXPECT_EQ(
        interposer.CallsTo("curl_easy_setopt 10002 "),
        std::vector<std::string>{"curl_easy_setopt 10002 http://h:1/xp?op=reply&id=P 1&tag=t%201"});
}

TEST_F(ControlUpload, ResponseTextTravelsAsItIsWithAZeroByte) {
    ExpectRespondText("");
    ExpectRespondText("line\r\nline\r\n");
    ExpectRespondText("--------------------------\r\n\r\n");
    ExpectRespondText(std::string("a\0b\xFF\0", 5));
    ExpectRespondText(std::string(1500001, 'x'));
}

TEST_F(ControlUpload, ResponseTextThatNamesAFileIsNotRead) {
    ExpectRespondText(MakeFile("secret", "content"));
}

TEST_F(ControlUpload, JarIsSentUnchanged) {
    std::string content("PK\x03\x04\0\r\n", 7);
    for (int i = 0; i < 70001; ++i) {
        content += static_cast<char>(i % 251);
    }
    const std::string path = MakeFile("code.jar", content);
    const ScriptedServer server(OkReply("ignored"));
    HalcyrREST(server.Address(), logger, false).InstallJar("P 1", path);
    ExpectFileUpload(server, "/xp?op=jar&id=P%201", path, content);
}

TEST_F(ControlUpload, JarsPathTravelsAsTheCallerWroteIt) {
    MakeFile("code.jar", "x");
    const std::string path = Folder() + "//./code.jar";
    const ScriptedServer server(OkReply(""));
    HalcyrREST(server.Address(), logger, false).InstallJar("P1", path);
    ExpectFileUpload(server, "/xp?op=jar&id=P1", path, "x");
}

TEST_F(ControlUpload, MissingJarFailsInTheTransfer) {
    const ScriptedServer server(StatusReply("404 Not Found"));
    ExpectEasyError(
        [&] { HalcyrREST(server.Address(), logger, false).InstallJar("P1", Folder() + "/none"); },
        "curl_easy_perform", CURLE_READ_ERROR);
}

TEST_F(ControlUpload, NoExpectationOfALeaveToContinueIsSent) {
    const ScriptedServer server(OkReply(""));
    HalcyrREST(server.Address(), logger, false)
        .RespondToCommand("P1", "t", std::string(1500001, 'x'), true, true);
    EXPECT_EQ(RequestHead(server.OnlyRequest()).find("Expect"), std::string::npos);
    EXPECT_EQ(interposer.CallsTo("curl_slist_append"),
              std::vector<std::string>{"curl_slist_append Expect:"});
}

TEST_F(ControlUpload, TextThatCannotBeStoredIsASystemError) {
    setenv("TMPDIR", (Folder() + "/none").c_str(), 1);
    EXPECT_THROW(HalcyrREST("h:1", logger, false).RespondToCommand("P1", "t", "x", true, true),
                 std::system_error);
    EXPECT_EQ(interposer.Calls(), std::vector<std::string>());
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
