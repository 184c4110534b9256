#include "support/SimulatorTest.h"

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using PowerTest = SimulatorTest;

TEST_F(PowerTest, SwitchesThePayload) {
    EXPECT_EQ(RunTavo({"power", "on", "--server", server, "--id", "P1"}),
              (Outcome{0, "P1: power is on\n", ""}));
    EXPECT_EQ(Payload()["mainSwitch"], true);
    EXPECT_EQ(RunTavo({"power", "off", "--server", server, "--id", "P1", "--json"}),
              (Outcome{0,
                       R"({"id":"P1","on":false,"switch":null})"
                       "\n",
                       ""}));
    EXPECT_EQ(Payload()["mainSwitch"], false);
}

TEST_F(PowerTest, SwitchesOneSwitch) {
    EXPECT_EQ(RunTavo({"power", "on", "--server", server, "--id", "P1", "--switch", "pump 2"}),
              (Outcome{0, "P1: switch 'pump 2' is on\n", ""}));
    EXPECT_EQ(Payload()["switches"]["pump 2"], true);
    EXPECT_EQ(
        RunTavo({"power", "off", "--server", server, "--id", "P1", "--switch", "pump 2", "--json"}),
        (Outcome{0,
                 R"({"id":"P1","on":false,"switch":"pump 2"})"
                 "\n",
                 ""}));
    EXPECT_EQ(Payload()["switches"]["pump 2"], false);
}

TEST_F(PowerTest, StateIsOnOrOff) {
    EXPECT_EQ(RunTavo({"power", "maybe"}),
              (Outcome{2, "",
                       "tavo power: STATE is on or off, not 'maybe'; see 'tavo power "
                       "--help'\n"}));
    EXPECT_EQ(RunTavo({"power"}),
              (Outcome{2, "", "tavo power: STATE is required; see 'tavo power --help'\n"}));
}

TEST_F(PowerTest, OffAsksForThePayloadToBeSwitchedOff) {
    EXPECT_EQ(RunTavo({"off", "--server", server, "--id", "P1"}),
              (Outcome{0, "P1: to be switched off\n", ""}));
    EXPECT_EQ(Payload()["off"], true);
    EXPECT_EQ(RunTavo({"off", "--server", server, "--id", "P1", "--json"}),
              (Outcome{0, "{\"id\":\"P1\"}\n", ""}));
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
