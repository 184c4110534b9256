#include "HalcyrREST/ClientTest.h"

#include <type_traits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

template <typename Exception>
class ClientException : public ::testing::Test {
protected:
    template <typename Other>
    static constexpr int is = std::is_base_of_v<Other, Exception> ? 1 : 0;
};

struct ExceptionNames {
    template <typename Exception>
    static std::string GetName(int index) {
        const char* const names[] = {"EmptyCommand", "JSONParsing", "RemoteCommandFormat",
                                     "ServerTimeout"};
        return names[index];
    }
};

using ClientExceptions =
    ::testing::Types<HalcyrREST::EmptyCommandException, HalcyrREST::JSONParsingError,
                     HalcyrREST::RemoteCommandFormatError, HalcyrREST::ServerTimeoutOnRequest>;
TYPED_TEST_SUITE(ClientException, ClientExceptions, ExceptionNames);

TYPED_TEST(ClientException, IsARuntimeErrorWithItsMessageAndNothingElse) {
    static_assert(std::is_convertible_v<TypeParam*, std::runtime_error*>);
    static_assert(sizeof(TypeParam) == sizeof(std::runtime_error));
    static_assert(std::has_virtual_destructor_v<TypeParam>);
    static_assert(!std::is_default_constructible_v<TypeParam>);
    const std::string message(" any\ntext ");
    ExpectThrows<TypeParam>([&] { throw TypeParam(message); }, message);
}

TYPED_TEST(ClientException, IsNoneOfTheOthers) {
    static_assert(TestFixture::template is<HalcyrREST::EmptyCommandException> +
                      TestFixture::template is<HalcyrREST::JSONParsingError> +
                      TestFixture::template is<HalcyrREST::RemoteCommandFormatError> +
                      TestFixture::template is<HalcyrREST::ServerTimeoutOnRequest> ==
                  1);
}

class ClientObject : public ClientTest {};

TEST_F(ClientObject, ConstructionSendsAndLogsNothing) {
    const ScriptedServer server(OkReply(""));
    const HalcyrREST client(server.Address(), logger, true);
    EXPECT_EQ(interposer.Calls(), std::vector<std::string>());
    EXPECT_EQ(logger.Text(), "");
    EXPECT_EQ(server.Requests(), std::vector<std::string>());
}

TEST_F(ClientObject, ServerAddressIsCopied) {
    const ScriptedServer server(OkReply(""));
    std::string address = server.Address();
    HalcyrREST client(address, logger, false);
    address = "changed";
    client.TurnPayloadOff("P1");
    ExpectGet(server, "/xp?op=off&id=P1");
}

TEST_F(ClientObject, ServerAddressGoesIntoTheAddressUnescaped) {
    const ScriptedServer server(OkReply(""));
    HalcyrREST(server.Address() + "/a%20b/c:d", logger, false).TurnPayloadOff("P1");
    ExpectGet(server, "/a%20b/c:d/xp?op=off&id=P1");
}

TEST_F(ClientObject, EachOperationHasItsOwnConnectionAndNoMemory) {
    const ScriptedServer server({Reply(OkReply("one")), Reply(OkReply("OK")),
                                 Reply(StatusReply("404 Not Found")), Reply(OkReply("two"))});
    HalcyrREST client(server.Address(), logger, false);
    EXPECT_EQ(client.RunScript("a", "x"), "one");
    client.SetPayloadKELDSwitch("b", true);
    EXPECT_THROW(client.RunScript("c", "z"), std::runtime_error);
    EXPECT_EQ(client.RunScript("d", "y"), "two");
    EXPECT_EQ(server.Requests(),
              (std::vector<std::string>{GetRequest(server.Address(), "/xp?op=script&id=a&cmd=x"),
                                        GetRequest(server.Address(), "/xp?op=pwr&id=b&cmd=on"),
                                        GetRequest(server.Address(), "/xp?op=script&id=c&cmd=z"),
                                        GetRequest(server.Address(), "/xp?op=script&id=d&cmd=y")}));
}

TEST_F(ClientObject, AtLevel8TheReplyOfAGetIsLogged) {
    const ScriptedServer server(OkReply("body"));
    CapturingLogger wanting({8});
    HalcyrREST(server.Address(), wanting, false).RunScript("P1", "c");
    EXPECT_EQ(wanting.Text(), "HTTP GET http://" + server.Address() +
                                  "/xp?op=script&id=P1&cmd=c\n\nReturned headers:\n\n"
                                  "\nHTTP/1.1 200 OK\r\n\nContent-Length: 4\r\n\n\r\n\n"
                                  "\nReturned data (4):\n\nbody\n\n");
}

TEST_F(ClientObject, AtLevel7AnUploadAndItsContentAreLogged) {
    const ScriptedServer server(OkReply(""));
    CapturingLogger wanting({7});
    HalcyrREST(server.Address(), wanting, false).RespondToCommand("P1", "t", "text", true, true);
    MirrinFramework::ByteArray content;
    content.InitFromLiteralString("text");
    EXPECT_EQ(wanting.Text(), "HTTP POST http://" + server.Address() +
                                  "/xp?op=reply&id=P1&tag=t\n" + content.ToStringSplitView() +
                                  "\n");
}

TEST_F(ClientObject, AtLevel7AFileIsLoggedByTheWordContent) {
    const ScriptedServer server(OkReply(""));
    CapturingLogger wanting({7});
    HalcyrREST(server.Address(), wanting, false).InstallJar("P1", MakeFile("a.jar", "secret"));
    MirrinFramework::ByteArray content;
    content.InitFromLiteralString("content");
    EXPECT_EQ(wanting.Text(), "HTTP POST http://" + server.Address() + "/xp?op=jar&id=P1\n" +
                                  content.ToStringSplitView() + "\n");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
