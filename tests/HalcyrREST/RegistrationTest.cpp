#include "HalcyrREST/ClientTest.h"
#include "support/GlobalLocale.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

const char* const sixMembers = "\n\t\"boardAddress\" : 60000,\n\t\"corbaName\" : \"c\",\n"
                               "\t\"description\" : \"d\",\n\t\"hostID\" : \"h\",\n"
                               "\t\"reportingAddress\" : 2,\n\t\"tag\" : \"t\"\n";

class RegistrationUpload : public ClientTest {
protected:
    RegistrationUpload() {
        registration.tag = "t";
        registration.description = "d";
        registration.boardAddress = 60000;
        registration.reportingAddress = 2;
        registration.corbaName = "c";
        registration.hostID = "h";
    }

    /// Expects that this content is sent as that text.
    void ExpectSent(const std::string& content, const std::string& text) {
        const ScriptedServer server(OkReply("ignored"));
        HalcyrREST(server.Address(), logger, false).RegisterPayloadWithContent("P1", content, "");
        ExpectTextUpload(server, "/xp?op=meta&id=P1", text);
    }

    void ExpectTarget(const std::string& id, const std::string& hostId, const std::string& target) {
        const ScriptedServer server(OkReply(""));
        HalcyrREST client(server.Address(), logger, false);
        client.RegisterPayloadWithContent(id, "{\"a\":1}", hostId);
        ExpectTextUpload(server, target, "\"a\":1");
    }

    /// Expects that the record is registered with the template file `path` as that text, and
    /// returns what was told on standard output meanwhile.
    std::string Registered(const std::string& path, const std::string& text) {
        const ScriptedServer server(OkReply(""));
        HalcyrREST client(server.Address(), logger, false);
        CaptureStdout();
        client.RegisterPayload("P 1", path, registration, "h&1");
        const std::string told = GetCapturedStdout();
        ExpectTextUpload(server, "/xp?op=meta&id=P%201&hostid=h%261", text);
        return told;
    }

    HalcyrREST::PayloadRegistration registration;
};

TEST_F(RegistrationUpload, IdentifierAloneIsTheOnlyParameter) {
    ExpectTarget("p1", "", "/xp?op=meta&id=p1");
}

TEST_F(RegistrationUpload, WithoutIdentifierAndHostThereIsNoParameter) {
    ExpectTarget("", "", "/xp?op=meta");
}

TEST_F(RegistrationUpload, HostAloneIsTheOnlyParameter) {
    ExpectTarget("", "h", "/xp?op=meta&hostid=h");
}

TEST_F(RegistrationUpload, IdentifierComesBeforeTheHost) {
    ExpectTarget("p1", "h", "/xp?op=meta&id=p1&hostid=h");
}

TEST_F(RegistrationUpload, AmpersandAndEqualsSignAreEscaped) {
    ExpectTarget("a&b=c", "d=e&f", "/xp?op=meta&id=a%26b%3Dc&hostid=d%3De%26f");
}

TEST_F(RegistrationUpload, OuterBracesAreRemoved) {
    ExpectSent("{\"a\":1}", "\"a\":1");
}

TEST_F(RegistrationUpload, BlanksAndLineEndsAroundTheObjectAreRemoved) {
    ExpectSent(" \r\n\t\v\f{\"a\":1}\n \r\n", "\"a\":1");
}

TEST_F(RegistrationUpload, BlanksInsideTheBracesStay) {
    ExpectSent(" {\n \"a\":1\n } ", "\n \"a\":1\n ");
    ExpectSent("{ }", " ");
}

TEST_F(RegistrationUpload, EmptyObjectIsAnEmptyPart) {
    ExpectSent("{}", "");
    ExpectSent("\n{}\n", "");
}

TEST_F(RegistrationUpload, EmptyOrBlankContentIsAnEmptyPart) {
    ExpectSent("", "");
    ExpectSent(" \r\n", "");
}

TEST_F(RegistrationUpload, OnlyOnePairOfBracesIsRemoved) {
    ExpectSent("{{\"a\":1}}", "{\"a\":1}");
    ExpectSent("{\"a\":{}}", "\"a\":{}");
}

TEST_F(RegistrationUpload, MissingClosingBraceKeepsTheOpeningOne) {
    ExpectSent(" {\"a\":1 ", "{\"a\":1");
    ExpectSent("{", "{");
}

TEST_F(RegistrationUpload, MissingOpeningBraceKeepsTheClosingOne) {
    ExpectSent(" \"a\":1} ", "\"a\":1}");
    ExpectSent("}", "}");
}

TEST_F(RegistrationUpload, ContentWithoutBracesIsSentTrimmed) {
    ExpectSent("\n\"a\":1\n", "\"a\":1");
    ExpectSent("[1]", "[1]");
}

TEST_F(RegistrationUpload, ContentIsNotChecked) {
    ExpectSent(std::string("no JSON \0 at all\xFF", 17), std::string("no JSON \0 at all\xFF", 17));
}

TEST_F(RegistrationUpload, ContentThatNamesAFileIsNotRead) {
    const std::string path = MakeFile("secret", "content");
    ExpectSent(path, path);
}

TEST_F(RegistrationUpload, WhiteSpaceIsWhatTheGlobalLocaleSays) {
    ExpectSent("!{}!", "!{}!");
    const GlobalLocale locale(new OddLetters);
    ExpectSent("!{\"a\":1}!", "\"a\":1");
}

TEST_F(RegistrationUpload, RecordIsWrittenOverTheTemplate) {
    const std::string path =
        MakeFile("t.json", R"({"tag":"old","boardAddress":1,"extra":[1,{"x":null}],"zone":"z"})");
    const std::string told = Registered(
        path, "\n\t\"boardAddress\" : 60000,\n\t\"corbaName\" : \"c\",\n"
              "\t\"description\" : \"d\",\n\t\"extra\" : \n\t[\n\t\t1,\n\t\t{\n\t\t\t\"x\" : null\n"
              "\t\t}\n\t],\n\t\"hostID\" : \"h\",\n\t\"reportingAddress\" : 2,\n"
              "\t\"tag\" : \"t\",\n\t\"zone\" : \"z\"\n");
    EXPECT_EQ(told, "");
}

TEST_F(RegistrationUpload, SentTextIsTheContentWithoutItsBraces) {
    const std::string path = MakeFile("t.json", "\"zone\":\"{z}\"");
    const std::string content =
        HalcyrREST("h:1", logger, false).GetPayloadRegistrationContent(path, registration);
    ASSERT_EQ(content.substr(0, 2), "{\n");
    ASSERT_EQ(content.substr(content.size() - 3), "\n}\n");
    Registered(path, content.substr(1, content.size() - 3));
}

TEST_F(RegistrationUpload, ContentIsTheRecordsOwnDocument) {
    const std::string path = MakeFile("t.json", "{\"zone\":1}");
    EXPECT_EQ(HalcyrREST("h:1", logger, false).GetPayloadRegistrationContent(path, registration),
              registration.ToJSON(path));
    EXPECT_EQ(interposer.Calls(), std::vector<std::string>());
}

TEST_F(RegistrationUpload, MissingTemplateIsToldAndTheSixMembersAreSent) {
    EXPECT_EQ(Registered(Folder() + "/none", sixMembers), "ToJSON: basic_string::_M_create\n");
}

TEST_F(RegistrationUpload, BrokenTemplateIsToldAndTheSixMembersAreSent) {
    EXPECT_EQ(Registered(MakeFile("t.json", "{\"tag\":}"), sixMembers),
              "ToJSON: * Line 1, Column 8\n"
              "  Syntax error: value, object or array expected.\n\n");
}

TEST_F(RegistrationUpload, LargeTemplateIsToldAndTheSixMembersAreSent) {
    const std::string path = MakeFile("t.json", std::string(32769, ' '));
    EXPECT_EQ(Registered(path, sixMembers),
              "ToJSON: File cannot be larger than 32K (" + path + ")\n");
}

TEST_F(RegistrationUpload, MissingTemplateIsToldByTheContentToo) {
    CaptureStdout();
    const std::string content =
        HalcyrREST("h:1", logger, false)
            .GetPayloadRegistrationContent(Folder() + "/none", registration);
    EXPECT_EQ(GetCapturedStdout(), "ToJSON: basic_string::_M_create\n");
    EXPECT_EQ(content, "{" + std::string(sixMembers) + "}\n");
}

TEST_F(RegistrationUpload, StatusIsCheckedUnderItsLabel) {
    const ScriptedServer server(StatusReply("400 Bad Request"));
    HalcyrREST client(server.Address(), logger, false);
    const std::string message =
        "For Payload Registration, the HTTP header did not return OK: HTTP/1.1 400 Bad Request";
    const std::string path = MakeFile("t.json", "{}");
    ExpectThrows<std::runtime_error>([&] { client.RegisterPayload("", path, registration, ""); },
                                     message);
    ExpectThrows<std::runtime_error>([&] { client.RegisterPayloadWithContent("", "", ""); },
                                     message);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
