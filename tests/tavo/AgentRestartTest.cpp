#include "agent/Journal.h"
#include "core/Failure.h"
#include "support/AgentTest.h"
#include "support/ResourceLimit.h"
#include "support/Throws.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

class AgentRestartTest : public AgentTest {
protected:
    /// A journal's line for the command "go" with the tag "t1", or a further one with another tag.
    static std::string Line(const std::string& state, const std::string& more = "",
                            const std::string& number = "1", const std::string& tag = "t1") {
        return "{" + more +
               "\"command\":\"go\",\"id\":\"P1\",\"isFile\":false,\"number\":" + number +
               ",\"state\":\"" + state + "\",\"succeeded\":true,\"tag\":\"" + tag + "\"}\n";
    }

    static constexpr char append[] = "echo \"$TAVO_TAG\" >>\"$0\"; echo ran";
};

TEST_F(AgentRestartTest, WhatWasReceivedIsRun) {
    WriteFile("journal", Line("received"));
    Start({}, append);
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: ran\n"});
    EXPECT_EQ(Stop().code, 0);
    EXPECT_EQ(FileLines("ran"), Lines{"t1"});
}

TEST_F(AgentRestartTest, WhatWasStartedIsAnsweredAndNotRun) {
    WriteFile("journal", Line("received") + Line("started"));
    Start({}, append);
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: [interrupted: the agent ended while this ran; it is not "
                                     "run again] (failed)"});
    EXPECT_EQ(Stop().code, 0);
    EXPECT_EQ(FileLines("ran"), Lines{});
}

TEST_F(AgentRestartTest, WhatEndedIsAnswered) {
    WriteFile("journal", Line("received") + Line("started") +
                             Line("ended", "\"answer\":\"as it was \xc3\xa9\","));
    Start({}, append);
    EXPECT_EQ(AwaitAnswers(1), Lines{"t1: as it was \xef\xbf\xbd"}) << "one byte, not two";
    EXPECT_EQ(Stop().code, 0);
    EXPECT_EQ(FileLines("ran"), Lines{});
}

TEST_F(AgentRestartTest, WhatWasAnsweredIsOverAndIfItComesAgainIsNotRunAgain) {
    WriteFile("journal", Line("received") + Line("started") + Line("ended", "\"answer\":\"x\",") +
                             Line("answered"));
    Queue("t1");
    Queue("t2");
    Start({}, append);
    Lines answers = AwaitAnswers(2);
    std::sort(answers.begin(), answers.end());
    EXPECT_EQ(answers, (Lines{"t1: [done before, not run again]", "t2: ran\n"}));
    EXPECT_EQ(Stop().code, 0);
    EXPECT_EQ(FileLines("ran"), Lines{"t2"});
}

TEST_F(AgentRestartTest, AnEmptyTagIsNeverTheSame) {
    Queue("");
    Queue("");
    Start({}, append);
    EXPECT_EQ(AwaitAnswers(2), (Lines{": ran\n", ": ran\n"}));
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentRestartTest, TwinsWithoutTagAreToldApart) {
    WriteFile("journal", Line("received", "", "1", "") + Line("received", "", "2", "") +
                             Line("started", "", "1", "") +
                             Line("ended", "\"answer\":\"first\",", "1", "") +
                             Line("started", "", "2", ""));
    Start({}, append);
    EXPECT_EQ(AwaitAnswers(2), (Lines{": first", ": [interrupted: the agent ended while this ran; "
                                                 "it is not run again] (failed)"}));
    EXPECT_EQ(Stop().code, 0);
    EXPECT_EQ(FileLines("ran"), Lines{});
}

TEST_F(AgentRestartTest, AJournalDoesNotKeepAnswersThatWereTaken) {
    Queue("t1");
    Queue("t2");
    Start({"--output-limit", "3000000"}, "head -c 3000000 /dev/zero | tr '\\0' x");
    AwaitAnswers(2);
    EXPECT_EQ(Stop().code, 0);
    EXPECT_LT(FileText("journal").size(), 10000U);
    Start({}, append);
    Queue("t1");
    EXPECT_EQ(AwaitAnswers(3).back(), "t1: [done before, not run again]");
    EXPECT_EQ(Stop().code, 0);
}

TEST_F(AgentRestartTest, AJournalCutAtAnyByteLosesOnlyItsLastLine) {
    const std::string first = Line("received");
    const std::string whole = first + Line("started");
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        WriteFile("journal", whole.substr(0, size));
        Journal journal(Path("journal"));
        ASSERT_EQ(journal.Tasks().size(), size < first.size() ? 0U : 1U) << size;
        if (size >= first.size()) {
            EXPECT_EQ(journal.Tasks().front().state,
                      size < whole.size() ? Task::State::Received : Task::State::Ended)
                << size;
        }
    }
}

void ExpectUnreadable(const std::string& journal, const std::string& why) {
    TavoRemotingLib::Testing::ExpectThrows<LocalError>([&] { const Journal read(journal); },
                                                       "cannot read '" + journal + "': " + why);
}

TEST_F(AgentRestartTest, AJournalThatCannotBeReadIsRefused) {
    ExpectUnreadable("/proc/self/mem", "Input/output error");
}

TEST_F(AgentRestartTest, AJournalThatCannotBeOpenedForReadingIsNotReplaced) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs descriptors for its own checks";
#endif
    WriteFile("journal", Line("received"));
    {
        // One descriptor is left, to open it for writing.
        const int next = dup(STDIN_FILENO);
        close(next);
        const TavoRemotingLib::Testing::ResourceLimit limit(RLIMIT_NOFILE,
                                                            static_cast<rlim_t>(next) + 1);
        ExpectUnreadable(Path("journal"), "Too many open files");
    }
    EXPECT_EQ(FileText("journal"), Line("received"));
}

TEST_F(AgentRestartTest, AnotherFileIsNotTakenForAJournal) {
    for (const std::string& text :
         {std::string("important text\n"), std::string("{\"latitude\":57.25}\n"), Line("lost"),
          Line("ended", "\"answer\":[],"), Line("started", "", "-1")}) {
        WriteFile("journal", text);
        Start({}, append);
        EXPECT_EQ(agent->Finish(),
                  (Outcome{6, "",
                           "tavo agent: '" + Path("journal") +
                               "' is not an agent's journal; name another file with --journal, or "
                               "remove it\n"}));
        EXPECT_EQ(FileText("journal"), text);
    }
}

TEST_F(AgentRestartTest, WhatIsNoFileIsNotReplaced) {
    ASSERT_EQ(mkfifo(Path("journal").c_str(), 0600), 0);
    const int reader = open(Path("journal").c_str(), O_RDWR | O_CLOEXEC);
    Start({}, append);
    EXPECT_EQ(agent->Finish(),
              (Outcome{6, "",
                       "tavo agent: '" + Path("journal") +
                           "' is no file for a journal; name another with --journal\n"}));
    close(reader);
    EXPECT_TRUE(std::filesystem::is_fifo(Path("journal")));
}

TEST_F(AgentRestartTest, TwoAgentsDoNotShareAJournal) {
    Queue("t1");
    Start({}, append);
    AwaitAnswers(1);
    const std::unique_ptr<TavoProcess> first = std::move(agent);
    Start({}, append);
    EXPECT_EQ(agent->Finish(),
              (Outcome{6, "",
                       "tavo agent: another agent uses the journal '" + Path("journal") +
                           "'; stop it, or name another file with --journal\n"}));
    first->Signal(SIGINT);
    EXPECT_EQ(first->Finish().code, 0);
}

TEST_F(AgentRestartTest, FiftyKillsLoseNothingAndRunNothingTwice) {
    simulator = nullptr;
    simulator = std::make_unique<TavoRemotingLib::Testing::Simulator>(Folder(),
                                                                      Lines{"--redeliver", "0.2"});
    server = simulator->Address();
    std::mt19937 random(20261121);
    std::uniform_int_distribution<int> microseconds(0, 60000);
    std::set<std::string> tags;
    for (int i = 0; i < 50; ++i) {
        for (const char* const half : {"a", "b"}) {
            tags.insert(std::to_string(i) + half);
            Queue(std::to_string(i) + half);
        }
        // A killed program leaves its temporary file.
        Start({}, append, {"TMPDIR=" + Path("data")});
        // The moment of the kill is what is being tried.
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        agent->Signal(SIGKILL);
        EXPECT_EQ(agent->Finish().code, -SIGKILL);
    }
    // The last agent has something to do, so that it is not stopped before it can tell.
    tags.insert("last");
    Queue("last");
    Start({}, append);
    std::set<std::string> answered;
    while (answered != tags) {
        std::this_thread::yield();
        for (const std::string& answer : simulator->Answers("P1")) {
            answered.insert(answer.substr(0, answer.find(':')));
        }
    }
    EXPECT_EQ(Stop().code, 0);
    const Lines ran = FileLines("ran");
    EXPECT_EQ(std::set<std::string>(ran.begin(), ran.end()).size(), ran.size()) << "one ran twice";
    std::size_t interrupted = 0;
    for (const std::string& answer : simulator->Answers("P1")) {
        interrupted += answer.find("interrupted") != std::string::npos ? 1U : 0U;
    }
    EXPECT_GE(ran.size() + interrupted, tags.size()) << "one was answered without being run";
    EXPECT_GT(ran.size(), 50U);
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
