#include "ExampleTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class PayloadHostTest : public ExampleTest {};

TEST_F(PayloadHostTest, Usage) {
    ExpectUsage("payload_host", "SERVER ID REGISTRATION_FILE FILE_TO_SEND");
}

TEST_F(PayloadHostTest, MeetsItsScenario) {
    const std::string file = MakeFile("day-one.bin", "abc");
    Simulator simulator(Folder(), {"--scenario", SCENARIO_FILE});
    const Outcome outcome =
        Run("payload_host", simulator.Address(), {"P1", REGISTRATION_FILE, file});
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(simulator.Wait(), 0);
    EXPECT_EQ(simulator.Output(), "met: it is registered\n"
                                  "met: its registration is complete\n"
                                  "met: the pump is off again\n"
                                  "met: the status is answered\n"
                                  "met: reading a file is reported\n"
                                  "met: the file is read\n"
                                  "met: the packet has arrived\n"
                                  "met: the file has arrived\n"
                                  "met: it asks for one delay\n"
                                  "met: it is told to shut down and turns itself off\n"
                                  "met: its requests are well-formed\n"
                                  "scenario: 11 of 11 expectations met\n");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
