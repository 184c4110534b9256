#include "support/ScriptedServer.h"
#include "support/SimulatorTest.h"

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using TavoRemotingLib::Testing::OkReply;
using TavoRemotingLib::Testing::ScriptedServer;

class RespondTest : public SimulatorTest {
protected:
    Call Respond(const std::vector<std::string>& more, const std::string& input = "") const {
        std::vector<std::string> words = {"respond", "-s", server, "-i", "P1"};
        words.insert(words.end(), more.begin(), more.end());
        return {words, {}, input};
    }
};

TEST_F(RespondTest, AnswersWithAText) {
    simulator->QueueCommand("P1", "t1", "status");
    ASSERT_EQ(RunTavo({"poll", "-s", server, "-i", "P1", "--commands", "-q"}),
              (Outcome{0, "", ""}));
    EXPECT_EQ(RunTavo(Respond({"t1", "40 %", "--incomplete"})),
              (Outcome{0, "P1: answered 't1', more follows\n", ""}));
    EXPECT_EQ(simulator->Commands("P1"), std::vector<std::string>{"t1: delivered"});
    EXPECT_EQ(RunTavo(Respond({"t1", "all is well"})), (Outcome{0, "P1: answered 't1'\n", ""}));
    EXPECT_EQ(simulator->Commands("P1"), std::vector<std::string>{"t1: answered"});
    EXPECT_EQ(simulator->Answers("P1"),
              (std::vector<std::string>{"t1: 40 % (more follows)", "t1: all is well"}));
}

TEST_F(RespondTest, AnswersWithStandardInput) {
    EXPECT_EQ(RunTavo(Respond({"t 1", "--failed"}, "line 1\nline 2\n")),
              (Outcome{0, "P1: answered 't 1', failed\n", ""}));
    EXPECT_EQ(RunTavo(Respond({"", "", "--failed", "--incomplete", "--json"}, "not read")),
              (Outcome{0,
                       R"({"complete":false,"id":"P1","succeeded":false,"tag":""})"
                       "\n",
                       ""}));
    EXPECT_EQ(simulator->Answers("P1"), (std::vector<std::string>{"t 1: line 1\nline 2\n (failed)",
                                                                  ":  (more follows) (failed)"}));
}

TEST_F(RespondTest, NeedsATag) {
    EXPECT_EQ(RunTavo(Respond({})),
              (Outcome{2, "", "tavo respond: TAG is required; see 'tavo respond --help'\n"}));
}

TEST_F(RespondTest, EscapesTheIdAsEveryOtherCommandDoes) {
    const ScriptedServer scripted(OkReply(""));
    EXPECT_EQ(RunTavo({"respond", "-s", scripted.Address(), "-i", "P 1&", "t", "x"}).code, 0);
    EXPECT_EQ(scripted.OnlyRequest().rfind("POST /xp?op=reply&id=P%201%26&tag=t HTTP/1.1\r\n", 0),
              0U);
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
