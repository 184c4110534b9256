#include "examples/ExampleTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class EditRegistration : public ExampleTest {};

/// What the example makes of examples/registration.json.
const std::string document = R"({
	"boardAddress" : 513,
	"corbaName" : "CTDPayload",
	"description" : "Conductivity, temperature and depth probe, second unit",
	"enabled" : true,
	"generateAlarms" : false,
	"hardware" : 
	[
		{
			"connector" : "J3",
			"manufacturer" : "Halden Instruments",
			"model" : "Sonde 7",
			"pn" : "HI-S7-01",
			"power" : 15,
			"serial" : "000417",
			"swver" : "1.8",
			"tty" : "/dev/ttyS1"
		},
		{
			"manufacturer" : "Halden Instruments",
			"model" : "Camera 4",
			"tty" : "/dev/ttyS2"
		}
	],
	"hostID" : "P 1-host",
	"interface" : 
	[
		{
			"pn" : "IF-2040",
			"swver" : "3.2.0"
		}
	],
	"reportingAddress" : 514,
	"tag" : "ctd"
}
)";

TEST_F(EditRegistration, SendsWhatItMadeOfTheFile) {
    const Simulator simulator(Folder());
    const Outcome outcome =
        Run("edit_registration", simulator.Address(), {"P 1", REGISTRATION_FILE});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, document);
    EXPECT_EQ(outcome.errors, "HTTP GET http://SERVER/xp?op=metadone&id=P%201\n");
    const Json::Value payload = simulator.Payload("P 1");
    EXPECT_EQ(payload["registration"].toStyledString(), document);
    EXPECT_EQ(payload["hostId"].asString(), "P 1-host");
    EXPECT_TRUE(payload["registrationComplete"].asBool());
}

TEST_F(EditRegistration, TellsWhatIsWrongWithTheFile) {
    const Simulator simulator(Folder());
    const std::string missing = Folder() + "/none.json";
    const std::string large = MakeFile("large.json", std::string(32769, ' '));
    const std::string broken = MakeFile("broken.json", "{\"tag\": }");
    const std::string json = "* Line 1, Column 9\n"
                             "  Syntax error: value, object or array expected.\n";
    const struct {
        std::string file, output, error;
    } cases[] = {
        {missing, "basic_string::_M_create", "cannot open " + missing + "\n"},
        {large, "File cannot be larger than 32K (" + large + ")",
         "File cannot be larger than 32K (" + large + ")\n"},
        {broken, json, json + "\n"},
    };
    for (const auto& [file, output, error] : cases) {
        const Outcome outcome = Run("edit_registration", simulator.Address(), {"P1", file});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.output, "PayloadRegistration(): " + output);
        EXPECT_EQ(outcome.errors, "edit_registration: " + error);
    }
    EXPECT_TRUE(simulator.Payload("P1").isNull());
}

TEST_F(EditRegistration, TellsItsUsage) {
    ExpectUsage("edit_registration", "SERVER ID FILE");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
