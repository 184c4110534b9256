#include "control/JournalFile.h"
#include "control/TrafficView.h"
#include "support/ResourceLimit.h"
#include "support/StandingWorld.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class JournalFileTest : public StandingWorld {
protected:
    /// The members of an exchange that matter here, for each line.
    static std::vector<std::string> Kept(const std::string& journal) {
        std::vector<std::string> lines;
        std::istringstream text(journal);
        for (std::string line; std::getline(text, line);) {
            const Json::Value json = ParsedJson(line);
            lines.push_back(json["number"].asString() + " " + json["operation"].asString() + " " +
                            json["request"].asString() + " " + json["reply"].asString());
        }
        return lines;
    }

    const std::string name = folder.path + "/journal";
};

TEST_F(JournalFileTest, AppendsEachExchangeAsItEnds) {
    const JournalFile journal(name, world);
    TrafficEntry entry;
    entry.operation = "poll";
    const auto recording = std::make_shared<Recording>();
    entry.recording = recording;
    const std::uint64_t number = world.traffic.Begin(entry);
    EXPECT_EQ(ReadFile(name), "");
    EndExchange("off");
    recording->AddReceived("a\0b", 3);
    recording->AddSent("\xFF", 1);
    world.traffic.Change(number, [](TrafficEntry& open) { open.open = false; });
    EXPECT_EQ(Kept(ReadFile(name)), (std::vector<std::string>{"2 off  ", "1 poll YQBi /w=="}));
    EXPECT_FALSE(journal.Failed());
}

TEST_F(JournalFileTest, ItsLinesAreThoseOfTheControlInterface) {
    const JournalFile journal(name, world);
    EndExchange("off", {"P1"}, {"a flag"}, "body-cut");
    EXPECT_EQ(ReadFile(name), JournalLine(world.clock, *world.traffic.Find(1)) + "\n");
}

TEST_F(JournalFileTest, GoesOnBehindWhatIsThere) {
    WriteFile(name, "{}\n");
    const JournalFile journal(name, world);
    EndExchange("off");
    EXPECT_EQ(ReadFile(name).rfind("{}\n{\"", 0), 0U);
}

TEST_F(JournalFileTest, RefusesAFileThatEndsInTheMiddleOfALine) {
    WriteFile(name, "{}\n{");
    try {
        const JournalFile journal(name, world);
        FAIL();
    } catch (const std::runtime_error& failure) {
        EXPECT_EQ(failure.what(), "the journal '" + name + "' ends in the middle of a line");
    }
    EXPECT_EQ(ReadFile(name), "{}\n{");
}

TEST_F(JournalFileTest, RefusesAFileThatCannotBeOpened) {
    try {
        const JournalFile journal(folder.path + "/a/b", world);
        FAIL();
    } catch (const std::runtime_error& failure) {
        EXPECT_EQ(failure.what(),
                  "cannot open the journal '" + folder.path + "/a/b': No such file or directory");
    }
}

TEST_F(JournalFileTest, SaysOnceThatItCannotBeWritten) {
    const JournalFile journal("/dev/full", world);
    ::testing::internal::CaptureStderr();
    EndExchange("off");
    EndExchange("off");
    EXPECT_EQ(
        ::testing::internal::GetCapturedStderr(),
        "tavo-simulator: the journal '/dev/full' cannot be written: No space left on device\n");
    EXPECT_TRUE(journal.Failed());
}

TEST_F(JournalFileTest, TakesBackALineThatCouldBeWrittenInPartOnly) {
    const JournalFile journal(name, world);
    EndExchange("off");
    const std::string whole = ReadFile(name);
    ::testing::internal::CaptureStderr();
    std::string during;
    {
        const TavoRemotingLib::Testing::SmallFiles limit(whole.size() + 10);
        EndExchange("off");
        during = ReadFile(name);
    }
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(during, whole);
    EXPECT_TRUE(journal.Failed());
    EndExchange("off");
    EXPECT_EQ(Kept(ReadFile(name)), (std::vector<std::string>{"1 off  ", "3 off  "}));
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
