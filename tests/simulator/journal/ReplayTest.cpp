#include "model/Replay.h"
#include "wire/Json.h"

#include <gtest/gtest.h>
#include <sstream>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

/// A line of a journal with the reply "abc"; `more` comes behind its first members.
std::string Line(const std::string& more) {
    return R"({"method": "GET", "target": "/xp?a", "replyBytes": 3, "reply": "YWJj",)"
           R"( "seconds": 1.5, "status": 200, "reason": "OK", "fault": null, "open": false)" +
           more + "}\n";
}

/// The same with a member's value in the place of another.
std::string Replaced(const std::string& from, const std::string& to) {
    std::string line = Line("");
    line.replace(line.find(from), from.size(), to);
    return line;
}

std::string Mistake(const std::string& journal) {
    std::istringstream lines(journal);
    try {
        const Replay replay(lines);
    } catch (const FileMistake& mistake) {
        return mistake.what();
    }
    return "";
}

std::string NextBytes(Replay& replay, const std::string& method, const std::string& target) {
    const auto next = replay.Next(method, target);
    return next ? next->bytes : "none";
}

TEST(Replay, GivesTheRepliesInTheirOrderAndThenTheLastOneAgain) {
    std::istringstream journal(Line("") + Replaced("/xp?a", "/xp?b") + Replaced("YWJj", "ZGVm") +
                               Replaced("GET", "POST"));
    Replay replay(journal);
    EXPECT_EQ(NextBytes(replay, "GET", "/xp?a"), "abc");
    EXPECT_EQ(NextBytes(replay, "GET", "/xp?a"), "def");
    EXPECT_EQ(NextBytes(replay, "GET", "/xp?a"), "def");
    EXPECT_EQ(NextBytes(replay, "GET", "/xp?b"), "abc");
    EXPECT_EQ(NextBytes(replay, "POST", "/xp?a"), "abc");
    EXPECT_EQ(NextBytes(replay, "POST", "/xp?b"), "none");
    EXPECT_EQ(NextBytes(replay, "GET", "/xp"), "none");
}

TEST(Replay, KnowsAReplysTimeStatusAndFault) {
    std::istringstream journal(Replaced("null", "\"body-cut\""));
    const auto recorded = Replay(journal).Next("GET", "/xp?a");
    ASSERT_TRUE(recorded);
    EXPECT_EQ(recorded->seconds, 1.5);
    EXPECT_EQ(recorded->status, 200);
    EXPECT_EQ(recorded->reason, "OK");
    EXPECT_EQ(recorded->fault, "body-cut");
}

TEST(Replay, LeavesOutWhatHadNotEndedAndWhatWasNoRequest) {
    std::istringstream journal(Replaced("false", "true") + Replaced("GET", "") +
                               Line(R"(, "later": [])"));
    Replay replay(journal);
    EXPECT_EQ(NextBytes(replay, "", "/xp?a"), "none");
    EXPECT_EQ(NextBytes(replay, "GET", "/xp?a"), "abc");
}

TEST(Replay, AnEmptyReplyIsOneToo) {
    std::istringstream journal(
        R"({"method": "GET", "target": "/", "replyBytes": 0, "reply": "", "seconds": 0,)"
        R"( "status": 0, "reason": ""})");
    Replay replay(journal);
    EXPECT_EQ(NextBytes(replay, "GET", "/"), "");
}

TEST(Replay, NamesTheLineOfAMistake) {
    EXPECT_EQ(Mistake(Line("") + "{\n"),
              "line 2: Line 1, Column 2: Missing '}' or object member name");
    EXPECT_EQ(Mistake("[]\n"), "line 1: not a JSON object");
    EXPECT_EQ(Mistake(Line("") + Line("") + "{}"), "line 3: member 'method' must be a string");
    EXPECT_EQ(Mistake(Replaced("1.5", "-1")),
              "line 1: member 'seconds' must be a number from 0 on");
    EXPECT_EQ(Mistake(Replaced("200", "\"200\"")),
              "line 1: member 'status' must be a number from 0 on");
    EXPECT_EQ(Mistake(Replaced("YWJj", "Y*Jj")), "line 1: member 'reply' is not base64");
    EXPECT_EQ(Mistake(Line("") + Replaced("\"replyBytes\": 3", "\"replyBytes\": 300000")),
              "line 2: the reply is not whole: 3 of 300000 bytes are here; remove the line to "
              "replay the others");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
