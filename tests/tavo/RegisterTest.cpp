#include "support/ScriptedServer.h"
#include "support/SimulatorTest.h"

#include <fstream>
#include <json/reader.h>
#include <sstream>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using Texts = std::vector<std::string>;
using TavoRemotingLib::Testing::OkReply;
using TavoRemotingLib::Testing::ScriptedServer;

const char small[] = R"("tag": "a", "boardAddress": 7, "extra": [1],
"interface": [{"pn": "I", "swver": "1"}],
"hardware": [{"model": "A", "power": 5}, {"model": "B"}])";

Json::Value Parsed(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

class RegisterTest : public SimulatorTest {
protected:
    void SetUp() override {
        SimulatorTest::SetUp();
        file = MakeFile("registration.json", small);
    }

    Outcome Register(const Texts& more) const {
        Texts words = {"register", file};
        words.insert(words.end(), more.begin(), more.end());
        return RunTavo(words);
    }

    /// The document that would be sent, on one line.
    std::string Printed(Texts more) const {
        more.insert(more.end(), {"--print", "--json"});
        const Outcome outcome = Register(more);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }

    std::string file;
};

TEST_F(RegisterTest, SendsTheFilesDocument) {
    const std::string example = REGISTRATION_FILE;
    EXPECT_EQ(RunTavo({"register", example, "-s", server, "-i", "P1"}),
              (Outcome{0, "P1: registered as 'ctd'\n", ""}));
    std::ifstream stream(example);
    EXPECT_EQ(Payload()["registration"],
              Json::Value(Parsed({std::istreambuf_iterator<char>(stream), {}})));
    EXPECT_EQ(Payload()["hostId"], "ctd-host-1");
    EXPECT_EQ(Payload()["registrationComplete"], false);
    EXPECT_EQ(RunTavo({"registration-complete", "-s", server, "-i", "P1"}),
              (Outcome{0, "P1: registration is complete\n", ""}));
    EXPECT_EQ(Payload()["registrationComplete"], true);
    EXPECT_EQ(RunTavo({"registration-complete", "-s", server, "-i", "P1", "--json"}),
              (Outcome{0, "{\"id\":\"P1\"}\n", ""}));
}

TEST_F(RegisterTest, SendsTheEditedDocumentAndTheHost) {
    EXPECT_EQ(Register({"-s", server, "-i", "P1", "--set", "tag=b=c", "--set", "hostID=h1"}),
              (Outcome{0, "P1: registered as 'b=c'\n", ""}));
    EXPECT_EQ(Payload()["registration"]["tag"], "b=c");
    EXPECT_EQ(Payload()["registration"]["extra"], Parsed("[1]"));
    EXPECT_EQ(Payload()["hostId"], "h1");
    EXPECT_EQ(Register({"-s", server, "-i", "P1", "--host-id", "h2", "--json"}),
              (Outcome{0, "{\"hostId\":\"h2\",\"id\":\"P1\"}\n", ""}));
    EXPECT_EQ(Payload()["hostId"], "h2");
}

TEST_F(RegisterTest, IdAndHostMayBeMissing) {
    const ScriptedServer scripted(OkReply(""));
    EXPECT_EQ(Register({"-s", scripted.Address()}), (Outcome{0, "registered as 'a'\n", ""}));
    EXPECT_EQ(scripted.OnlyRequest().rfind("POST /xp?op=meta HTTP/1.1\r\n", 0), 0U);
}

TEST_F(RegisterTest, SetsTheRecordsMembers) {
    EXPECT_EQ(Printed({"--set", "tag=t", "--set", "description=d e", "--set", "boardAddress=65535",
                       "--set", "reportingAddress=0", "--set", "corbaName=", "--set", "hostID=h"}),
              R"({"boardAddress":65535,"corbaName":"","description":"d e","extra":[1],)"
              R"("hardware":[{"model":"A","power":5},{"model":"B"}],"hostID":"h",)"
              R"("interface":[{"pn":"I","swver":"1"}],"reportingAddress":0,"tag":"t"})"
              "\n");
}

TEST_F(RegisterTest, EditsTheInterface) {
    EXPECT_EQ(Parsed(Printed({"--interface", "swver=2"}))["interface"],
              Parsed(R"([{"pn":"I","swver":"2"}])"));
    EXPECT_EQ(Parsed(Printed({"--interface", "pn=J", "--interface", "swver="}))["interface"],
              Parsed(R"([{"pn":"J"}])"));
    EXPECT_FALSE(
        Parsed(Printed({"--interface", "pn=", "--interface", "swver="})).isMember("interface"));
}

TEST_F(RegisterTest, EditsHardwareEntries) {
    const auto hardware = [this](const Texts& options) {
        return Parsed(Printed(options))["hardware"];
    };
    EXPECT_EQ(hardware({"--hardware", "2.serial=0=1", "--hardware", "1.power="}),
              Parsed(R"([{"model":"A"},{"model":"B","serial":"0=1"}])"));
    EXPECT_EQ(
        hardware(
            {"--hardware", "3.manufacturer=M", "--hardware", "3.power=-2",      "--hardware",
             "3.pn=p",     "--hardware",       "3.swver=s",  "--hardware",      "3.tty=t",
             "--hardware", "3.connector=c",    "--hardware", "4.model=D",       "--drop-hardware",
             "2",          "--drop-hardware",  "1",          "--drop-hardware", "2"}),
        Parsed(R"([{"manufacturer":"M","power":-2,"pn":"p","swver":"s","tty":"t",)"
               R"("connector":"c"},{"model":"D"}])"));
    EXPECT_FALSE(
        Parsed(Printed({"--drop-hardware", "1", "--drop-hardware", "2"})).isMember("hardware"));
}

TEST_F(RegisterTest, PrintsWithoutSending) {
    EXPECT_EQ(RunTavo({"register", MakeFile("r.json", R"({"tag": "x"})"), "--print"}),
              (Outcome{0,
                       "{\n\t\"boardAddress\" : 0,\n\t\"corbaName\" : \"\",\n\t\"description\" : "
                       "\"\",\n\t\"hostID\" : \"\",\n\t\"reportingAddress\" : 0,\n\t\"tag\" : "
                       "\"x\"\n}\n",
                       ""}));
}

TEST_F(RegisterTest, EditsThatAreNotUnderstood) {
    const std::pair<Texts, std::string> cases[] = {
        {{"--set", "tag"}, "--set needs NAME=VALUE, not 'tag'; see 'tavo register --help'"},
        {{"--set", "colour=red"},
         "--set knows no 'colour'; there are boardAddress, corbaName, description, hostID, "
         "reportingAddress, tag"},
        {{"--set", "boardAddress=65536"},
         "boardAddress needs a number from 0 to 65535, not '65536'; see 'tavo register --help'"},
        {{"--set", "reportingAddress=-1"},
         "reportingAddress needs a number from 0 to 65535, not '-1'; see 'tavo register --help'"},
        {{"--interface", "tag=x"}, "--interface knows no 'tag'; there are pn, swver"},
        {{"--hardware", "1=x"},
         "--hardware needs NUMBER.NAME=VALUE, not '1=x'; see 'tavo register --help'"},
        {{"--hardware", "1.colour=x"},
         "--hardware knows no 'colour'; there are connector, manufacturer, model, pn, power, "
         "serial, swver, tty"},
        {{"--hardware", "1.power=1e3"},
         "power needs a number from -2147483648 to 2147483647, not '1e3'; see 'tavo register "
         "--help'"},
        {{"--hardware", "4.model=x"},
         "there is no hardware entry '4'; they are numbered from 1, and there are 2"},
        {{"--hardware", "0.model=x"},
         "there is no hardware entry '0'; they are numbered from 1, and there are 2"},
        {{"--drop-hardware", "3"},
         "there is no hardware entry '3'; they are numbered from 1, and there are 2"},
        {{"--drop-hardware", "1x"},
         "there is no hardware entry '1x'; they are numbered from 1, and there are 2"},
    };
    for (const auto& [options, line] : cases) {
        EXPECT_EQ(Register(options), (Outcome{2, "", "tavo register: " + line + "\n"}));
    }
}

TEST_F(RegisterTest, FilesThatAreNoRegistration) {
    const auto line = [](const std::string& path, const std::string& message) {
        return Outcome{6, "",
                       "tavo register: '" + path + "' is no registration file: " + message +
                           "; mend the file\n"};
    };
    const std::string broken = MakeFile("broken", "{\"tag\": }");
    EXPECT_EQ(RunTavo({"register", broken}),
              line(broken, "* Line 1, Column 9 Syntax error: value, object or array expected."));
    const std::string large = MakeFile("large", std::string(32769, ' '));
    EXPECT_EQ(RunTavo({"register", large}),
              line(large, "File cannot be larger than 32K (" + large + ")"));
    EXPECT_EQ(RunTavo({"register", Folder() + "/none"}),
              (Outcome{6, "",
                       "tavo register: cannot read '" + Folder() +
                           "/none': No such file or directory; check the path\n"}));
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
