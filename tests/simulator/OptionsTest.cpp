#include "program/Options.h"
#include "support/Wire.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

std::string Complaint(const std::vector<std::string>& arguments) {
    return ParseOptions(arguments).error;
}

TEST(Options, Defaults) {
    const Options options = ParseOptions({}).options;
    EXPECT_EQ(options.port, 8080);
    EXPECT_EQ(options.address, "127.0.0.1");
    EXPECT_EQ(options.settings.dataFolder, "tavo-data");
    EXPECT_EQ(options.settings.clockSpeed, 1);
    EXPECT_EQ(options.settings.mostPayloads, 1000U);
    EXPECT_EQ(options.portFile, "");
    EXPECT_EQ(options.print, "");
    EXPECT_FALSE(options.quiet);
}

TEST(Options, ValuesFollowAsArgumentOrBehindEquals) {
    const Options options =
        ParseOptions({"--port", "0", "--bind=::1", "--data=a=b", "--port-file", "p", "--quiet",
                      "--speed", "60", "--start", "1e9", "--seed", "7", "--max-payloads", "3",
                      "--max-upload", "100"})
            .options;
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.address, "::1");
    EXPECT_EQ(options.settings.dataFolder, "a=b");
    EXPECT_EQ(options.portFile, "p");
    EXPECT_TRUE(options.quiet);
    EXPECT_EQ(options.settings.clockSpeed, 60);
    EXPECT_EQ(options.settings.startUnixSeconds, 1e9);
    EXPECT_EQ(options.settings.seed, 7U);
    EXPECT_EQ(options.settings.mostPayloads, 3U);
    EXPECT_EQ(options.settings.mostUploadBytes, 100U);
    EXPECT_EQ(ParseOptions({"--address", "::1"}).options.address, "::1");
    EXPECT_TRUE(options.settings.page);
    EXPECT_FALSE(ParseOptions({"--headless"}).options.settings.page);
}

TEST(Options, TheManualPageHasThoseOfTheHelp) {
    const auto options = [](const std::string& text) {
        const std::regex pattern("--[a-z][a-z-]*");
        return std::set<std::string>(std::sregex_token_iterator(text.begin(), text.end(), pattern),
                                     std::sregex_token_iterator());
    };
    std::string page = ReadFile(MANUAL_PAGE);
    page.erase(std::remove(page.begin(), page.end(), '\\'), page.end());
    EXPECT_EQ(options(page), options(ParseOptions({"--help"}).options.print));
    EXPECT_NE(page.find("tavo-simulator faults"), std::string::npos);
}

TEST(Options, SaysWhatIsWrong) {
    for (const char* const port : {"65536", "80x"}) {
        EXPECT_EQ(Complaint({"--port", port}),
                  std::string("Could not convert: --port = ") + port + "; see --help");
    }
    EXPECT_EQ(Complaint({"--bind", "vehicle"}), "--bind: not an IP address: vehicle; see --help");
    EXPECT_EQ(Complaint({"--data"}), "--data: 1 required DIR missing; see --help");
    EXPECT_EQ(Complaint({"--speed", "-1"}),
              "--speed: Value -1 not in range 0.000000 to 100000.000000; see --help");
    EXPECT_EQ(Complaint({"--por", "1"}),
              "The following arguments were not expected: 1 --por; see --help");
    EXPECT_EQ(Complaint({"stray"}), "The following argument was not expected: stray; see --help");
}

TEST(Options, RefusesWhatOnlyLooksLikeANumber) {
    const auto expectRefused = [](const std::string& option, const std::string& text) {
        EXPECT_EQ(Complaint({option, text}),
                  option + ": not a number from 0 on: '" + text + "'; see --help");
    };
    for (const char* const option : {"--port", "--seed", "--max-payloads", "--max-upload"}) {
        expectRefused(option, "");
        expectRefused(option, "-1");
        expectRefused(option, "x");
        EXPECT_EQ(Complaint({option, "18446744073709551616"}),
                  std::string(option) + ": too great a number: '18446744073709551616'; see --help");
    }
    EXPECT_EQ(ParseOptions({"--seed", "18446744073709551615"}).options.settings.seed, UINT64_MAX);
    for (const char* const option : {"--speed", "--start", "--redeliver"}) {
        expectRefused(option, "nan");
    }
    EXPECT_EQ(ParseOptions({"--speed", ".5"}).options.settings.clockSpeed, 0.5);
}

TEST(Options, AScenariosSettingsCountUnlessTheCommandLineSaysOtherwise) {
    const TempFolder folder;
    const std::string file = folder.path + "/s.json";
    WriteFile(file, R"({"speed": 60, "start": 5, "seed": 7,
                        "end": {"at": 1}, "expect": [{"noFlags": {}}]})");
    const Options options = ParseOptions({"--scenario", file}).options;
    EXPECT_EQ(options.settings.clockSpeed, 60);
    EXPECT_EQ(options.settings.startUnixSeconds, 5);
    EXPECT_EQ(options.settings.seed, 7U);
    EXPECT_EQ(options.scenario->endAt, 1);
    const Options given =
        ParseOptions({"--speed", "2", "--scenario", file, "--start=6", "--seed=1"}).options;
    EXPECT_EQ(given.settings.clockSpeed, 2);
    EXPECT_EQ(given.settings.startUnixSeconds, 6);
    EXPECT_EQ(given.settings.seed, 1U);
    WriteFile(file, R"({"end": {"at": 1}, "expect": [{"noFlags": {}}]})");
    const Options plain = ParseOptions({"--scenario", file, "--start=6"}).options;
    EXPECT_EQ(plain.settings.clockSpeed, 1);
    EXPECT_EQ(plain.settings.startUnixSeconds, 6);
    EXPECT_EQ(plain.settings.seed, 1U);
}

TEST(Options, ScriptsAndJournals) {
    const TempFolder folder;
    const Options options =
        ParseOptions({"--journal", "j", "--allow-scripts", folder.path}).options;
    EXPECT_EQ(options.journalFile, "j");
    EXPECT_EQ(options.settings.scriptFolder, folder.path);
    EXPECT_EQ(options.settings.scriptLimits.seconds, 60);
    EXPECT_EQ(options.settings.replay, nullptr);
    EXPECT_EQ(ParseOptions({"--allow-scripts", folder.path, "--script-timeout", "1.5"})
                  .options.settings.scriptLimits.seconds,
              1.5);
    EXPECT_EQ(Complaint({"--script-timeout", "1"}),
              "--script-timeout requires --allow-scripts; see --help");
    EXPECT_EQ(Complaint({"--allow-scripts", folder.path + "/none"}),
              "--allow-scripts: Directory does not exist: " + folder.path + "/none; see --help");
}

TEST(Options, AReplayExcludesWhatDecidesReplies) {
    const TempFolder folder;
    const std::string file = folder.path + "/file";
    WriteFile(file, "");
    EXPECT_NE(ParseOptions({"--replay", file, "--journal", "j", "--speed", "60", "--data", "d"})
                  .options.settings.replay,
              nullptr);
    const std::pair<std::string, std::string> others[] = {{"--scenario", file},
                                                          {"--allow-scripts", folder.path},
                                                          {"--seed", "1"},
                                                          {"--max-payloads", "1"},
                                                          {"--max-upload", "1"}};
    for (const auto& [name, value] : others) {
        EXPECT_EQ(Complaint({"--replay", file, name, value}),
                  name + " excludes --replay; see --help");
    }
}

TEST(Options, NamesTheFileOfAScenariosMistake) {
    const TempFolder folder;
    EXPECT_EQ(Complaint({"--scenario", folder.path + "/none"}),
              "--scenario: File does not exist: " + folder.path + "/none; see --help");
    WriteFile(folder.path + "/s.json", "{}");
    EXPECT_EQ(Complaint({"--scenario", folder.path + "/s.json"}),
              folder.path + "/s.json: end: is missing");
    EXPECT_EQ(Complaint({"--scenario", folder.path}),
              "--scenario: File is actually a directory: " + folder.path + "; see --help");
}

TEST(Options, FaultsAreListedByGroupWithOneLineEach) {
    const std::string list = ParseOptions({"faults"}).options.print;
    EXPECT_EQ(list.rfind("status line\n  no-reply ", 0), 0U) << list;
    for (const Fault& fault : FaultCatalogue()) {
        EXPECT_NE(list.find(std::string("  ") + fault.name + " "), std::string::npos);
        EXPECT_NE(list.find(std::string("  ") + fault.summary + "\n"), std::string::npos);
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
