#include "scenario/Scenario.h"

#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

/// The rest of a scenario that is right.
constexpr char rest[] = R"("end": {"whenMet": true}, "expect": [{"noFlags": {}}]})";

std::string Mistake(const std::string& text) {
    try {
        ParseScenario(text);
    } catch (const FileMistake& mistake) {
        return mistake.what();
    }
    return "";
}

std::string StepMistake(const std::string& step) {
    return Mistake("{\"steps\": [" + step + "], " + rest);
}

std::string EndMistake(const std::string& end) {
    return Mistake("{\"steps\": [{\"at\": 5, \"clock\": {\"speed\": 1}}], \"end\": " + end +
                   ", \"expect\": [{\"noFlags\": {}}]}");
}

std::string ExpectMistake(const std::string& expectation) {
    return Mistake("{\"end\": {\"at\": 1}, \"expect\": [{\"noFlags\": {}}, " + expectation + "]}");
}

TEST(Scenario, TakesItsSettingsItsEndAndItsStepsInTheOrderOfTheirTimes) {
    const Scenario scenario = ParseScenario(R"({
        "speed": 60, "start": 1e9, "seed": 7,
        "steps": [
            {"at": 9, "disarm": {"number": 3}},
            {"at": 2.5, "commands": {"id": "P1", "command": "a"}},
            {"at": 9, "disarm": {}}
        ],
        "end": {"at": 9, "whenMet": false},
        "expect": [{"noFlags": {}}, {"name": "it is off", "payload": {"id": "P1", "off": true}}]
    })");
    EXPECT_EQ(scenario.speed, 60);
    EXPECT_EQ(scenario.startUnixSeconds, 1e9);
    EXPECT_EQ(scenario.seed, 7U);
    ASSERT_EQ(scenario.steps.size(), 3U);
    EXPECT_EQ(scenario.steps[0].at, 2.5);
    EXPECT_EQ(scenario.steps[0].place, "steps[1].commands");
    EXPECT_EQ(scenario.steps[0].method + " " + scenario.steps[0].target, "POST /sim/v1/commands");
    EXPECT_EQ(scenario.steps[0].body, R"({"command":"a","id":"P1"})");
    EXPECT_EQ(scenario.steps[1].method + " " + scenario.steps[1].target,
              "DELETE /sim/v1/faults?number=3");
    EXPECT_EQ(scenario.steps[2].target, "/sim/v1/faults");
    EXPECT_EQ(scenario.endAt, 9);
    EXPECT_FALSE(scenario.endWhenMet);
    ASSERT_EQ(scenario.expectations.size(), 2U);
    EXPECT_EQ(scenario.expectations[0].name, R"(expect[0]: {"noFlags":{}})");
    EXPECT_EQ(scenario.expectations[1].name, "it is off");
}

TEST(Scenario, NeedsAnEndAndAnExpectationOnly) {
    const Scenario scenario = ParseScenario(std::string("{") + rest);
    EXPECT_FALSE(scenario.speed || scenario.startUnixSeconds || scenario.seed || scenario.endAt);
    EXPECT_TRUE(scenario.endWhenMet);
    EXPECT_EQ(scenario.steps.size(), 0U);
}

TEST(Scenario, NamesThePlaceOfAMistakeInTheWholeFile) {
    EXPECT_EQ(Mistake("{\n  \"end\": {,\n}"),
              "Line 2, Column 11: Missing '}' or object member name");
    EXPECT_EQ(Mistake("[1]"), "not a JSON object");
    EXPECT_EQ(Mistake(std::string(300, '[')), "nested too deeply");
    EXPECT_EQ(Mistake("{}"), "end: is missing");
    EXPECT_EQ(Mistake(R"({"end": {"at": 1}})"), "expect: is missing or empty");
    EXPECT_EQ(Mistake(R"({"end": {"at": 1}, "expect": {}})"), "expect: must be an array");
    EXPECT_EQ(Mistake(std::string(R"({"expects": [], )") + rest),
              "Member 'expects' is not known here");
    EXPECT_EQ(Mistake(std::string(R"({"speed": -1, )") + rest),
              "Member 'speed' must be a number from 0.0 to 100000.0");
    EXPECT_EQ(Mistake(std::string(R"({"start": "now", )") + rest),
              "Member 'start' must be a number from 0.0 to 100000000000.0");
    EXPECT_EQ(Mistake(std::string(R"({"seed": 1.5, )") + rest),
              "Member 'seed' must be a whole number from 0 to 4294967295");
}

TEST(Scenario, NamesThePlaceOfAMistakeInAStep) {
    EXPECT_EQ(Mistake(std::string(R"({"steps": {}, )") + rest), "steps: must be an array");
    EXPECT_EQ(StepMistake("7"), "steps[0]: must be an object");
    EXPECT_EQ(StepMistake(R"({"at": 1})"), "steps[0]: what to do is missing");
    EXPECT_EQ(StepMistake(R"({"clock": {"speed": 1}})"),
              "steps[0]: Member 'at' must be a number from 0.0 to 1000000000.0");
    EXPECT_EQ(StepMistake(R"({"at": 1, "clock": {}, "vehicle": {}})"),
              "steps[0]: 'clock' and 'vehicle' exclude each other");
    EXPECT_EQ(StepMistake(R"({"at": 1, "traffic": {}})"),
              "steps[0].traffic: there is no such order");
    EXPECT_EQ(StepMistake(R"({"at": 1, "clock": 60})"), "steps[0].clock: must be an object");
    EXPECT_EQ(StepMistake(R"({"at": 1, "clock": {}}, {"at": 0, "commands": {"id": ""}})"),
              "steps[1].commands: Member 'id' is empty");
    EXPECT_EQ(StepMistake(R"({"at": 1, "faults": {"fault": "none"}})"),
              "steps[0].faults: There is no fault 'none'");
    EXPECT_EQ(StepMistake(R"({"at": 1, "disarm": {"number": 0}})"),
              "steps[0].disarm: Member 'number' must be a whole number from 1 to 1000000");
    EXPECT_EQ(StepMistake(R"({"at": 1, "disarm": []})"), "steps[0].disarm: must be an object");
    // These are for the play to find out.
    EXPECT_EQ(
        StepMistake(R"({"at": 1, "forget": {"id": "P1"}}, {"at": 1, "disarm": {"number": 5}})"),
        "");
}

TEST(Scenario, NamesThePlaceOfAMistakeInTheEnd) {
    EXPECT_EQ(EndMistake("5"), "end: must be an object");
    EXPECT_EQ(EndMistake("{}"), "end: member 'at' or a true 'whenMet' is missing");
    EXPECT_EQ(EndMistake(R"({"whenMet": false})"),
              "end: member 'at' or a true 'whenMet' is missing");
    EXPECT_EQ(EndMistake(R"({"whenMet": 1})"), "end: Member 'whenMet' must be true or false");
    EXPECT_EQ(EndMistake(R"({"at": 4.9, "whenMet": true})"), "end.at: is before steps[0].clock");
    EXPECT_EQ(EndMistake(R"({"at": 5, "when": 1})"), "end: Member 'when' is not known here");
}

TEST(Scenario, NamesThePlaceOfAMistakeInAnExpectation) {
    const std::pair<const char*, const char*> cases[] = {
        {R"(1)", "expect[1]: must be an object"},
        {R"({"name": "x"})", "expect[1]: what to expect is missing"},
        {R"({"wonder": {}})", "expect[1].wonder: there is no such expectation"},
        {R"({"file": 1})", "expect[1].file: must be an object"},
        {R"({"name": "", "noFlags": {}})", "expect[1]: Member 'name' is empty"},
        {R"({"file": {}})", "expect[1].file: Member 'id' must be a string"},
        {R"({"file": {"id": "P", "sha256": "ab"}})",
         "expect[1].file: Member 'sha256' must be 64 hexadecimal digits"},
        {R"({"file": {"id": "P", "size": -1}})",
         "expect[1].file: Member 'size' must be a whole number from 0 to 1152921504606846976"},
        {R"({"command": {"id": "P"}})", "expect[1].command: Member 'tag' or 'command' is missing"},
        {R"({"packet": {"id": "P", "hex": "abc"}})",
         "expect[1].packet: Member 'hex' must be pairs of hexadecimal digits"},
        {R"({"packet": {"id": "P", "hex": "", "text": ""}})",
         "expect[1].packet: Members 'hex' and 'text' exclude each other"},
        {R"({"packet": {"id": "P"}})", "expect[1].packet: Member 'text' must be a string"},
        {R"({"registration": {"id": "P", "member": "a["}})",
         "expect[1].registration: Member 'member' is no path as in \"hardware[0].pn\""},
        {R"({"registration": {"id": "P", "member": "a..b"}})",
         "expect[1].registration: Member 'member' is no path as in \"hardware[0].pn\""},
        {R"({"payload": {"id": "P", "on": true}})",
         "expect[1].payload: Member 'on' is not known here"},
        {R"({"switch": {"id": "P"}})", "expect[1].switch: Member 'on' must be true or false"},
        {R"({"exchanges": {"operation": "on"}})",
         "expect[1].exchanges: There is no operation 'on'"},
        {R"({"exchanges": {"count": 1, "atMost": 1}})",
         "expect[1].exchanges: Member 'count' excludes 'atLeast' and 'atMost'"},
        {R"({"exchanges": {"atLeast": 2, "atMost": 1}})",
         "expect[1].exchanges: Member 'atMost' is less than 'atLeast'"},
        {R"({"fault": {"name": "none"}})", "expect[1].fault: There is no fault 'none'"},
    };
    for (const auto& [expectation, mistake] : cases) {
        EXPECT_EQ(ExpectMistake(expectation), mistake) << expectation;
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
