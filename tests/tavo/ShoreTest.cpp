#include "support/SimulatorTest.h"

#include <filesystem>
#include <numeric>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using Texts = std::vector<std::string>;

class ShoreTest : public SimulatorTest {
protected:
    Outcome Send(const Texts& words, const std::string& input = "") const {
        Texts all = {"-s", server, "-i", "P1"};
        all.insert(all.end(), words.begin(), words.end());
        return RunTavo(Call{all, {}, input});
    }
};

std::string EveryByte() {
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

TEST_F(ShoreTest, PacketOfText) {
    EXPECT_EQ(Send({"send-packet", "all \\ well"}),
              (Outcome{0, "P1: sent a packet of 10 bytes\n", ""}));
    EXPECT_EQ(Send({"send-packet", "x", "--json"}),
              (Outcome{0, "{\"bytes\":1,\"id\":\"P1\"}\n", ""}));
    EXPECT_EQ(Send({"send-packet", ""}, "not read"),
              (Outcome{0, "P1: sent a packet of 0 bytes\n", ""}));
    EXPECT_EQ(simulator->Packets("P1"), (Texts{"all \\ well", "x", ""}));
}

TEST_F(ShoreTest, PacketOfHexadecimalDigits) {
    EXPECT_EQ(Send({"send-packet", "--hex", "00 fE\t7f\nFF"}),
              (Outcome{0, "P1: sent a packet of 4 bytes\n", ""}));
    EXPECT_EQ(Send({"send-packet", "--hex"}, "41\n"),
              (Outcome{0, "P1: sent a packet of 1 byte\n", ""}));
    EXPECT_EQ(simulator->Packets("P1"), (Texts{std::string("\0\xFE\x7F\xFF", 4), "A"}));
    for (const std::string wrong : {"0", "0x", "G0", "0 0"}) {
        EXPECT_EQ(Send({"send-packet", "--hex", wrong}),
                  (Outcome{2, "",
                           "tavo send-packet: '" + wrong.substr(0, 2) +
                               "' is not a byte in hexadecimal; write pairs of digits, "
                               "such as 00FF or '00 FF'\n"}));
    }
}

TEST_F(ShoreTest, PacketFromStandardInput) {
    std::string bytes;
    for (int i = 0; i < 1001; ++i) {
        bytes += EveryByte();
    }
    EXPECT_EQ(Send({"send-packet"}, bytes),
              (Outcome{0, "P1: sent a packet of 256256 bytes\n", ""}));
    EXPECT_EQ(simulator->Packets("P1"), Texts{bytes});
}

TEST_F(ShoreTest, File) {
    const std::string file = MakeFile("survey.bin", EveryByte() + "odd");
    EXPECT_EQ(Send({"send-file", file}), (Outcome{0, "P1: sent '" + file + "', 259 bytes\n", ""}));
    EXPECT_EQ(Send({"send-file", file, "--remote", "day one.bin"}),
              (Outcome{0, "P1: sent '" + file + "', 259 bytes\n", ""}));
    EXPECT_EQ(
        Send({"send-file", file, "--legacy", "--remote", "old", "--json"}),
        (Outcome{0, R"({"bytes":259,"file":")" + file + R"(","id":"P1","remote":"old"})" + "\n",
                 ""}));
    EXPECT_EQ(simulator->Files("P1"),
              (Texts{EveryByte() + "odd", EveryByte() + "odd", EveryByte() + "odd"}));
    const Json::Value files = Payload()["files"];
    EXPECT_EQ(files[0]["operation"], "upload");
    EXPECT_EQ(files[0]["remote"], "");
    EXPECT_EQ(files[1]["operation"], "upload");
    EXPECT_EQ(files[1]["remote"], "day one.bin");
    EXPECT_EQ(files[2]["operation"], "uploadlegacy");
    EXPECT_EQ(files[2]["remote"], "old");
}

TEST_F(ShoreTest, Jar) {
    const std::string file = MakeFile("driver.jar", "PK\003\004");
    EXPECT_EQ(Send({"install-jar", file}), (Outcome{0, "P1: sent '" + file + "', 4 bytes\n", ""}));
    EXPECT_EQ(Send({"install-jar", file, "--json"}),
              (Outcome{0, R"({"bytes":4,"file":")" + file + R"(","id":"P1"})" + "\n", ""}));
    EXPECT_EQ(simulator->Files("P1"), (Texts{"PK\003\004", "PK\003\004"}));
    EXPECT_EQ(Payload()["files"][0]["operation"], "jar");
}

TEST_F(ShoreTest, FilesThatCannotBeSent) {
    for (const Texts& words :
         {Texts{"send-file"}, Texts{"send-file", "--legacy"}, Texts{"install-jar"}}) {
        const auto outcome = [&](const std::string& file) {
            Texts all = words;
            all.push_back(file);
            return Send(all);
        };
        const std::string begin = "tavo " + words[0] + ": cannot read '";
        EXPECT_EQ(outcome(Folder() + "/none"),
                  (Outcome{6, "",
                           begin + Folder() +
                               "/none': No such file or directory; check the "
                               "path\n"}));
        EXPECT_EQ(outcome(Folder()),
                  (Outcome{6, "", begin + Folder() + "': Is a directory; check the path\n"}));
        EXPECT_EQ(outcome("-"),
                  (Outcome{6, "", begin + "-': No such file or directory; check the path\n"}));
        EXPECT_EQ(Send(words), (Outcome{2, "",
                                        "tavo " + words[0] + ": FILE is required; see 'tavo " +
                                            words[0] + " --help'\n"}));
    }
    EXPECT_EQ(Payload(), Json::Value());
}

TEST_F(ShoreTest, FileThatIsCalledADash) {
    MakeFile("-", "dash");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Folder());
    EXPECT_EQ(Send({"send-file", "-"}, "not read"), (Outcome{0, "P1: sent '-', 4 bytes\n", ""}));
    std::filesystem::current_path(before);
    EXPECT_EQ(simulator->Files("P1"), Texts{"dash"});
}

TEST_F(ShoreTest, DeviceHasNoSize) {
    EXPECT_EQ(Send({"send-file", "/dev/null", "--json"}),
              (Outcome{0,
                       R"({"bytes":null,"file":"/dev/null","id":"P1","remote":null})"
                       "\n",
                       ""}));
    EXPECT_EQ(Send({"send-file", "/dev/null"}), (Outcome{0, "P1: sent '/dev/null'\n", ""}));
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
