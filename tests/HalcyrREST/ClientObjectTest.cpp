#include "HalcyrREST/ClientTest.h"

#include <type_traits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

template <typename Exception>
class ClientException : public ::testing::Test {};

using ClientExceptions =
    ::testing::Types<HalcyrREST::EmptyCommandException, HalcyrREST::JSONParsingError,
                     HalcyrREST::RemoteCommandFormatError, HalcyrREST::ServerTimeoutOnRequest>;
TYPED_TEST_SUITE(ClientException, ClientExceptions);

TYPED_TEST(ClientException, IsAPlainRuntimeErrorWithItsMessage) {
    static_assert(std::is_convertible_v<TypeParam*, std::runtime_error*>);
    static_assert(sizeof(TypeParam) == sizeof(std::runtime_error));
    static_assert(std::has_virtual_destructor_v<TypeParam>);
    static_assert(std::is_constructible_v<TypeParam, const std::string&>);
    static_assert(!std::is_default_constructible_v<TypeParam>);
    const std::string message(" any\ntext ");
    EXPECT_EQ(TypeParam(message).what(), message);
}

TYPED_TEST(ClientException, IsCaughtByItsOwnTypeAlone) {
    try {
        throw TypeParam("m");
    } catch (const HalcyrREST::EmptyCommandException& e) {
        EXPECT_EQ(typeid(TypeParam), typeid(e));
    } catch (const HalcyrREST::JSONParsingError& e) {
        EXPECT_EQ(typeid(TypeParam), typeid(e));
    } catch (const HalcyrREST::RemoteCommandFormatError& e) {
        EXPECT_EQ(typeid(TypeParam), typeid(e));
    } catch (const HalcyrREST::ServerTimeoutOnRequest& e) {
        EXPECT_EQ(typeid(TypeParam), typeid(e));
    }
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

TEST_F(ClientObject, ServerMayBeNamedWithItsPort) {
    const ScriptedServer server(OkReply(""));
    const std::string port = server.Address().substr(server.Address().find(':'));
    HalcyrREST("localhost" + port, logger, false).TurnPayloadOff("P1");
    EXPECT_EQ(server.OnlyRequest(), GetRequest("localhost" + port, "/xp?op=off&id=P1"));
}

TEST_F(ClientObject, EachOperationHasItsOwnConnectionAndNoMemory) {
    const ScriptedServer server({Reply(OkReply("one")), Reply(OkReply("OK")),
                                 Reply(StatusReply("404 Not Found")), Reply(OkReply("two"))});
    HalcyrREST client(server.Address(), logger, false);
    EXPECT_EQ(client.RunScript("a", "x"), "one");
    client.SetPayloadKELDSwitch("b", true);
    EXPECT_THROW(client.RunScript("c", "z"), std::runtime_error);
    EXPECT_EQ(client.RunScript("d", "y"), "two");
    EXPECT_EQ(server.Requests(), (std::vector<std::string>{
                                     GetRequest(server.Address(), "/xp?op=script&id=a&cmd=x"),
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
