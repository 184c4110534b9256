#include "examples/ExampleTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class PacketsAndFiles : public ExampleTest {
protected:
    const std::string dump = "00000000  44 00 02 12 67                                D...g\n";
};

TEST_F(PacketsAndFiles, DeliversExactBytes) {
    const Simulator simulator(Folder());
    std::string content;
    for (int i = 0; i < 100003; ++i) {
        content += static_cast<char>(i % 251);
    }
    const std::string file = MakeFile("day.bin", content);
    const Outcome outcome = Run("packets_and_files", simulator.Address(), {"P1", file});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output,
              "delivered packet 1\n" + dump + "delivered packet 2\ndelivered " + file + "\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(simulator.Packets("P1"), (Lines{"survey begins", std::string("D\0\2\x12\x67", 5)}));
    EXPECT_EQ(simulator.Files("P1"), Lines{content});
    const Json::Value kept = simulator.Payload("P1")["files"][0];
    EXPECT_EQ(kept["operation"].asString(), "upload");
    EXPECT_EQ(kept["remote"].asString(), "survey/0001.bin");
}

TEST_F(PacketsAndFiles, TriesAgainWhereTheWayFailed) {
    const ScriptedServer server({{ReadRequest(), Reset()}, Reply(OkReply(""))});
    const std::string file = MakeFile("day.bin", "x");
    const Outcome outcome = Run("packets_and_files", server.Address(), {"P1", file});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output,
              "delivered packet 1\n" + dump + "delivered packet 2\ndelivered " + file + "\n");
    EXPECT_EQ(outcome.errors, "packet 1, once more: curl_easy_perform returned 56 (Failure when "
                              "receiving data from the peer)\n");
    EXPECT_EQ(server.Requests().size(), 4U);
}

TEST_F(PacketsAndFiles, GivesUpBehindTheThirdTry) {
    const ScriptedServer server(Script{ReadRequest(), Reset()});
    const Outcome outcome = Run("packets_and_files", server.Address(), {"P1", "x"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.output, "");
    const std::string reset =
        "curl_easy_perform returned 56 (Failure when receiving data from the peer)\n";
    EXPECT_EQ(outcome.errors, "packet 1, once more: " + reset + "packet 1, once more: " + reset +
                                  "packets_and_files: " + reset);
    EXPECT_EQ(server.Requests().size(), 3U);
}

TEST_F(PacketsAndFiles, SendsNeitherAFolderNorWhatIsMissing) {
    const Simulator simulator(Folder());
    for (const std::string& file : {Folder(), Folder() + "/none", std::string("-")}) {
        const Outcome outcome = Run("packets_and_files", simulator.Address(), {"P1", file});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.errors, "packets_and_files: " + file + " is not a file\n");
    }
    EXPECT_EQ(simulator.Files("P1"), Lines{});
}

TEST_F(PacketsAndFiles, TellsItsUsage) {
    ExpectUsage("packets_and_files", "SERVER ID FILE");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
