#include "support/AgentTest.h"

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

/// The payloads in other languages that users copy.
class AgentExamplesTest : public AgentTest {
protected:
    static std::string Example(const std::string& name) {
        return SOURCE_FOLDER "/examples/agent/" + name;
    }
};

TEST_F(AgentExamplesTest, ShellHandler) {
    WriteFile("plan", "12345");
    Queue("t1", "depth 200");
    Queue("t2", Path("plan"), true);
    Queue("t3", "rm -rf /");
    StartWords({}, {Example("handler.sh")});
    EXPECT_EQ(AwaitAnswers(3), (Lines{"t1: diving to 200 m\n", "t2: the file has 5 bytes\n",
                                      "t3: unknown command 'rm -rf /'\n[exit code 1] (failed)"}));
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentExamplesTest, PythonHandler) {
    Queue("t1", "survey 2");
    Queue("t2", "who");
    Queue("t3", "dance");
    StartWords({}, {Example("handler.py")});
    EXPECT_EQ(AwaitAnswers(3), (Lines{"t1: line 1 of 2 is done\nline 2 of 2 is done\n",
                                      "t2: payload P1, command t2\n",
                                      "t3: unknown command 'dance'\n[exit code 1] (failed)"}));
    EXPECT_EQ(Stop().code, 0);
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
