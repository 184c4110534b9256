// A host may set a C++ locale that groups digits; the server and readers of messages must not
// notice.

#include "HalcyrREST/PollTest.h"
#include "support/GlobalLocale.h"

#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class GroupedDigits : public PollTest {
protected:
    void SetUp() override {
        PollTest::SetUp();
        std::ostringstream out;
        out << 1234;
        ASSERT_EQ(out.str(), "1'2'3'4");
    }

private:
    const GlobalLocale locale{new DigitGrouping};
};

TEST_F(GroupedDigits, DelayIsWrittenPlainly) {
    const ScriptedServer server(OkReply(""));
    HalcyrREST(server.Address(), logger, false).DelayShutdown("P1", -1234567);
    ExpectGet(server, "/xp?op=offdelay&id=P1&delay=-1234567&setdefault=0");
}

TEST_F(GroupedDigits, PollsNumbersAreWrittenPlainly) {
    const ScriptedServer server(OkReply(R"({"gps":{}})"));
    HalcyrREST(server.Address(), logger, false).Poll(ids, &commands, &gps, nullptr, -1, 1234567);
    ExpectGet(server, "/xp?op=poll&id=P1&format=2&gps=true&maxcommands=1234567&timeout=3600000");
}

TEST_F(GroupedDigits, EscapesAreWrittenPlainly) {
    EXPECT_EQ(HalcyrREST::EncodeURL("\xFF /"), "%FF%20%2F");
}

TEST_F(GroupedDigits, IndexOfACommandIsWrittenPlainly) {
    std::string items;
    for (int i = 0; i < 1234; ++i) {
        items += R"({"id":"1","command":"''"},)";
    }
    ExpectThrows<std::runtime_error>(
        [&] { Poll("{\"commands\":[" + items + "0]}"); },
        "Non-object found in command item list at index 1234 in response to Poll");
    EXPECT_EQ(commands.size(), 1234U);
}

TEST_F(GroupedDigits, ErrorThatIsANumberIsWrittenPlainly) {
    ExpectThrows<std::runtime_error>([&] { Poll(R"({"error":12345})"); },
                                     "Poll operation returned error from server: 12345\n");
}

TEST_F(GroupedDigits, LibcurlsCodeIsWrittenPlainly) {
    const ScriptedServer server(Script{ReadRequest()});
    HalcyrREST client(server.Address(), logger, false);
    ExpectEasyError([&] { client.TurnPayloadOff("P1"); }, "curl_easy_perform", CURLE_GOT_NOTHING);
}

TEST_F(GroupedDigits, PositionIsReadPlainly) {
    Poll(R"({"gps":{"latitude":-1234.5678,"longitude":12345678,"timeFix":1.5e10}})");
    EXPECT_EQ(gps.latitude, -1234.5678);
    EXPECT_EQ(gps.longitude, 12345678.0);
    EXPECT_EQ(gps.timeFix, 1.5e10);
}

TEST_F(GroupedDigits, RegistrationIsWrittenPlainly) {
    HalcyrREST::PayloadRegistration registration;
    registration.boardAddress = 12345;
    const std::string content =
        HalcyrREST("h:1", logger, false)
            .GetPayloadRegistrationContent(MakeFile("t.json", "{}"), registration);
    EXPECT_NE(content.find("\"boardAddress\" : 12345,"), std::string::npos) << content;
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
