#include "core/Progress.h"
#include "support/CleanTest.h"
#include "support/ScriptedServer.h"
#include "support/TavoProcess.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <regex>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using namespace TavoRemotingLib::Testing;
using namespace std::chrono_literals;

constexpr char bold[] = "\033[1m";
constexpr char red[] = "\033[31m";
constexpr char plain[] = "\033[0m";

class TerminalTest : public CleanTest {
protected:
    static Call OnTerminal(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& environment = {}) {
        Call call{arguments, environment};
        call.terminalOut = true;
        call.terminalErr = true;
        return call;
    }
};

TEST_F(TerminalTest, ErrorsAreColouredUnlessNotWanted) {
    const std::string name = "tavo:";
    const std::string rest = " unknown command 'x'; see 'tavo --help'\n";
    EXPECT_EQ(RunTavo(OnTerminal({"x"})), (Outcome{2, "", red + name + plain + rest}));
    EXPECT_EQ(RunTavo(OnTerminal({"x"}, {"NO_COLOR="})),
              (Outcome{2, "", red + name + plain + rest}));
    EXPECT_EQ(RunTavo(OnTerminal({"x"}, {"NO_COLOR=1"})), (Outcome{2, "", name + rest}));
    EXPECT_EQ(RunTavo(OnTerminal({"x"}, {"TERM=dumb"})), (Outcome{2, "", name + rest}));
    Call piped = OnTerminal({"x"});
    piped.terminalErr = false;
    EXPECT_EQ(RunTavo(piped), (Outcome{2, "", name + rest}));
}

TEST_F(TerminalTest, ResultsAreColouredOnATerminalOnly) {
    const ScriptedServer server(
        OkReply(R"({"commands":[{"id":"P1","command":"'t'go"}],"shutdown":true,)"
                R"("gps":{"error":"lost"}})"));
    const std::vector<std::string> poll = {"poll", "-s", server.Address(), "-i", "P1"};
    const auto text = [](const std::string& on, const std::string& bad, const std::string& off) {
        return on + "command" + off + " for P1, tag 't': go\n" + bad + "no position" + off +
               ": lost\n" + on + "shutdown" + off + " is requested\n";
    };
    EXPECT_EQ(RunTavo(OnTerminal(poll)), (Outcome{0, text(bold, red, plain), ""}));
    EXPECT_EQ(RunTavo(OnTerminal(poll, {"NO_COLOR=1"})), (Outcome{0, text("", "", ""), ""}));
    Call piped = OnTerminal(poll);
    piped.terminalOut = false;
    EXPECT_EQ(RunTavo(piped), (Outcome{0, text("", "", ""), ""}));
    const std::string json = RunTavo(poll).out;
    EXPECT_EQ(json, text("", "", ""));
}

TEST_F(TerminalTest, HelpHasBoldHeadings) {
    const Outcome outcome = RunTavo(OnTerminal({"off", "--help"}));
    EXPECT_EQ(
        outcome.out.rfind(std::string(bold) + "Usage: tavo off [OPTION]..." + plain + "\n", 0), 0U)
        << outcome.out;
    EXPECT_NE(outcome.out.find(std::string("\n") + bold + "Examples:" + plain + "\n"),
              std::string::npos);
}

class ProgressTest : public TerminalTest {
protected:
    void SetUp() override {
        TerminalTest::SetUp();
        slow = std::make_unique<ScriptedServer>(
            Script{ReadRequest(), Pause(1400ms), Send(OkReply("OK"))});
    }
    void TearDown() override {
        slow.reset();
        TerminalTest::TearDown();
    }

    /// A server that answers, but not within a second.
    std::unique_ptr<ScriptedServer> slow;
};

TEST_F(ProgressTest, SlowUploadShowsTimeSizeAndRate) {
    const std::string file = MakeFile("f", std::string(300001, 'x'));
    Call call = OnTerminal({"send-file", file, "-s", slow->Address(), "-i", "P1"});
    const Outcome outcome = RunTavo(call);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "P1: sent '" + file + "', 300001 bytes\n");
    EXPECT_TRUE(std::regex_match(
        outcome.err,
        std::regex("\rtavo send-file: 1 s, size 300\\.0 kB"
                   "\rtavo send-file: 300\\.0 kB in 1 s, [12][0-9]{2}\\.[0-9] kB/s *\n")))
        << outcome.err;
}

TEST_F(ProgressTest, StalledUploadShowsHowFarItIs) {
    auto stalled = std::make_unique<ScriptedServer>(Script{ReadHead(), Stall()});
    const std::string file = MakeFile("f", "");
    std::filesystem::resize_file(file, 100000000);
    TavoProcess tavo(OnTerminal({"send-file", file, "-s", stalled->Address(), "-i", "P1"}));
    tavo.AwaitErrors("2 s, ");
    stalled.reset(); // which breaks the connection
    const Outcome outcome = tavo.Finish();
    EXPECT_NE(outcome.code, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(std::regex_search(
        outcome.err,
        std::regex("^\rtavo send-file: 1 s, [0-9.]+ [kM]B of 100\\.0 MB, [0-9.]+ [kM]B/s *"
                   "\rtavo send-file: 2 s, [0-9.]+ [kM]B of 100\\.0 MB, [0-9.]+ [kM]B/s *")))
        << outcome.err;
}

TEST_F(ProgressTest, OtherSlowExchangesShowTheTimeWhileTheyLast) {
    EXPECT_EQ(RunTavo(OnTerminal({"power", "on", "-s", slow->Address(), "-i", "P1"})),
              (Outcome{0, "P1: power is on\n", "\rtavo power: 1 s\r               \r"}));
}

TEST_F(ProgressTest, FailureWipesTheIndicator) {
    const ScriptedServer failing(
        Script{ReadRequest(), Pause(1400ms), Send("HTTP/1.1 500 No\r\nContent-Length: 0\r\n\r\n")});
    const std::string file = MakeFile("f", "12345");
    EXPECT_EQ(
        RunTavo(
            OnTerminal({"send-file", file, "-s", failing.Address(), "-i", "P1"}, {"NO_COLOR=1"})),
        (Outcome{1, "",
                 "\rtavo send-file: 1 s, size 5 B\r                             \r"
                 "tavo send-file: " +
                     failing.Address() + " refused: HTTP/1.1 500 No; see its answer with -vv\n"}));
}

TEST_F(ProgressTest, NothingIsShownElsewhere) {
    Call piped = OnTerminal({"power", "on", "-s", slow->Address(), "-i", "P1"});
    piped.terminalErr = false;
    EXPECT_EQ(RunTavo(piped), (Outcome{0, "P1: power is on\n", ""}));
    EXPECT_EQ(RunTavo(OnTerminal({"power", "on", "-s", slow->Address(), "-i", "P1", "--quiet"})),
              (Outcome{0, "", ""}));
    EXPECT_EQ(RunTavo(OnTerminal({"power", "on", "-s", slow->Address(), "-i", "P1", "-v"})).err,
              "HTTP GET http://" + slow->Address() + "/xp?op=pwr&id=P1&cmd=on\n");
}

TEST(AmountTest, IsShortAndExact) {
    EXPECT_EQ(Amount(0), "0 B");
    EXPECT_EQ(Amount(999), "999 B");
    EXPECT_EQ(Amount(1000), "1.0 kB");
    EXPECT_EQ(Amount(999949), "999.9 kB");
    EXPECT_EQ(Amount(999950), "1.0 MB");
    EXPECT_EQ(Amount(2.5e9), "2.5 GB");
    EXPECT_EQ(Amount(1.5e15), "1500000.0 GB");
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
