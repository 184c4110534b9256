#include "HalcyrREST/ClientTest.h"
#include "support/GlobalLocale.h"

#include <climits>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class Control : public ClientTest {
protected:
    /// Expects that `call` makes a GET of `target`, answered with that body.
    template <typename Call>
    void ExpectGetOf(const std::string& target, const Call& call, const std::string& body = "OK") {
        const ScriptedServer server(OkReply(body));
        HalcyrREST client(server.Address(), logger, false);
        call(client);
        ExpectGet(server, target);
    }
};

TEST_F(Control, TurnPayloadOffRequestsOff) {
    ExpectGetOf("/xp?op=off&id=P1", [](HalcyrREST& client) { client.TurnPayloadOff("P1"); });
}

TEST_F(Control, TurnPayloadOffEscapesTheIdentifier) {
    ExpectGetOf("/xp?op=off&id=a%26b%3D%2Fc%20",
                [](HalcyrREST& client) { client.TurnPayloadOff("a&b=/c "); });
}

TEST_F(Control, EmptyIdentifierIsSentEmpty) {
    ExpectGetOf("/xp?op=off&id=", [](HalcyrREST& client) { client.TurnPayloadOff(""); });
}

TEST_F(Control, TurnPayloadOffIgnoresTheBody) {
    ExpectGetOf(
        "/xp?op=off&id=P1", [](HalcyrREST& client) { client.TurnPayloadOff("P1"); }, "failed");
}

TEST_F(Control, NamedSwitchOnEscapesTheBlank) {
    ExpectGetOf("/xp?op=pwr&id=P1&sw=S%202&cmd=on",
                [](HalcyrREST& client) { client.SetPayloadKELDSwitch("P1", "S 2", true); });
}

TEST_F(Control, NamedSwitchOffEscapesTheIdentifier) {
    ExpectGetOf("/xp?op=pwr&id=P%201&sw=S&cmd=off",
                [](HalcyrREST& client) { client.SetPayloadKELDSwitch("P 1", "S", false); });
}

TEST_F(Control, EmptySwitchNameIsSentEmpty) {
    ExpectGetOf("/xp?op=pwr&id=P1&sw=&cmd=on",
                [](HalcyrREST& client) { client.SetPayloadKELDSwitch("P1", "", true); });
}

TEST_F(Control, OwnSwitchOffHasNoSwitchParameter) {
    ExpectGetOf("/xp?op=pwr&id=P1&cmd=off",
                [](HalcyrREST& client) { client.SetPayloadKELDSwitch("P1", false); });
}

TEST_F(Control, OwnSwitchOnEscapesTheIdentifier) {
    ExpectGetOf("/xp?op=pwr&id=P%3D1&cmd=on",
                [](HalcyrREST& client) { client.SetPayloadKELDSwitch("P=1", true); });
}

TEST_F(Control, RunScriptEscapesIdentifierAndCommand) {
    ExpectGetOf("/xp?op=script&id=P%201&cmd=ls%20-l%20%2Fvar%3B%20echo%20%221%2B1%22%0A",
                [](HalcyrREST& client) { client.RunScript("P 1", "ls -l /var; echo \"1+1\"\n"); });
}

TEST_F(Control, RegistrationCompleteRequestsMetadone) {
    ExpectGetOf("/xp?op=metadone&id=P%26",
                [](HalcyrREST& client) { client.RegistrationComplete("P&"); });
}

TEST_F(Control, RegistrationCompleteIgnoresTheBody) {
    ExpectGetOf(
        "/xp?op=metadone&id=P1", [](HalcyrREST& client) { client.RegistrationComplete("P1"); },
        "failed");
}

TEST_F(Control, DelayShutdownOfZero) {
    ExpectGetOf("/xp?op=offdelay&id=P1&delay=0&setdefault=0",
                [](HalcyrREST& client) { client.DelayShutdown("P1", 0); });
}

TEST_F(Control, DelayShutdownKeepsTheMinusSign) {
    ExpectGetOf("/xp?op=offdelay&id=P%201&delay=-30&setdefault=0",
                [](HalcyrREST& client) { client.DelayShutdown("P 1", -30); });
}

TEST_F(Control, DelayShutdownOfTheExtremes) {
    for (const long delay : {LONG_MIN, LONG_MAX, 1234567L}) {
        ExpectGetOf("/xp?op=offdelay&id=P1&delay=" + std::to_string(delay) + "&setdefault=0",
                    [&](HalcyrREST& client) { client.DelayShutdown("P1", delay); });
    }
}

TEST_F(Control, DelayShutdownIgnoresTheBody) {
    ExpectGetOf(
        "/xp?op=offdelay&id=P1&delay=1&setdefault=0",
        [](HalcyrREST& client) { client.DelayShutdown("P1", 1); }, "failed");
}

TEST_F(Control, DelayShutdownFailsUnderThePollsLabel) {
    const ScriptedServer server(StatusReply("503 Busy"));
    ExpectThrows<std::runtime_error>(
        [&] { HalcyrREST(server.Address(), logger, false).DelayShutdown("P1", 1); },
        "For Poll, the HTTP header did not return OK: HTTP/1.1 503 Busy");
}

class RunScriptBody : public ClientTest, public ::testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Bodies, RunScriptBody,
                         ::testing::Values("", " \n", "done\n", " done\r\n ",
                                           std::string("a\0b\xFF\0", 5), std::string(100001, 'x')),
                         [](const auto& test) { return std::to_string(test.index); });

TEST_P(RunScriptBody, IsReturnedAsReceived) {
    const ScriptedServer server(OkReply(GetParam()));
    EXPECT_EQ(HalcyrREST(server.Address(), logger, false).RunScript("P1", "c"), GetParam());
}

class SwitchReply : public ClientTest {
protected:
    void ExpectPasses(const std::string& body) {
        const ScriptedServer server(OkReply(body));
        HalcyrREST client(server.Address(), logger, false);
        EXPECT_NO_THROW(client.SetPayloadKELDSwitch("P1", "S 2", true)) << body;
        EXPECT_NO_THROW(client.SetPayloadKELDSwitch("P1", false)) << body;
    }

    void ExpectFails(const std::string& body) {
        const ScriptedServer server(OkReply(body));
        HalcyrREST client(server.Address(), logger, false);
        const std::string message =
            "Server operation returned '" + body + "' for http://" + server.Address();
        ExpectThrows<std::runtime_error>([&] { client.SetPayloadKELDSwitch("P1", "S 2", true); },
                                         message + "/xp?op=pwr&id=P1&sw=S%202&cmd=on");
        ExpectThrows<std::runtime_error>([&] { client.SetPayloadKELDSwitch("P/1", false); },
                                         message + "/xp?op=pwr&id=P%2F1&cmd=off");
    }
};

TEST_F(SwitchReply, OKPasses) {
    ExpectPasses("OK");
}

TEST_F(SwitchReply, OKAmongBlanksAndLineEndsPasses) {
    for (const char* const body : {" OK ", "OK\n", "\r\n\t OK\v\f\r\n"}) {
        ExpectPasses(body);
    }
}

TEST_F(SwitchReply, SmallLettersFail) {
    ExpectFails("ok");
    ExpectFails("Ok");
}

TEST_F(SwitchReply, TextBesideOKFailsAndIsToldUntrimmed) {
    ExpectFails(" OK then\r\n");
    ExpectFails("not OK");
    ExpectFails("OK OK");
    ExpectFails("OKAY");
}

TEST_F(SwitchReply, EmptyBodyFails) {
    ExpectFails("");
}

TEST_F(SwitchReply, BlankBodyFailsAndIsToldUntrimmed) {
    ExpectFails(" \n");
}

TEST_F(SwitchReply, StatusLineIsCheckedFirst) {
    const ScriptedServer server("HTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\nno");
    ExpectThrows<std::runtime_error>(
        [&] { HalcyrREST(server.Address(), logger, false).SetPayloadKELDSwitch("P1", true); },
        "For Set Payload KELD Switch, the HTTP header did not return OK: HTTP/1.1 404 Not Found");
}

TEST_F(SwitchReply, WhiteSpaceIsWhatTheGlobalLocaleSays) {
    ExpectFails("OK!");
    const GlobalLocale locale(new OddLetters);
    ExpectPasses("!OK! ");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
