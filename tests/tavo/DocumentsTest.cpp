#include "commands/Commands.h"
#include "core/ExitCode.h"
#include "core/Help.h"
#include "core/Man.h"
#include "support/TavoProcess.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string Without(std::string text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) {
        text.erase(at, part.size());
    }
    return text;
}

Command Sample() {
    static std::vector<std::string> words;
    static bool flag = false;
    Command command;
    command.name = "dig";
    command.summary = "dig a hole";
    command.details = {"Two \\ words.", ".dotted 'quote'"};
    command.arguments = {{"WHERE", "", "the place", &words, {"here", "there"}, true}};
    command.options = {{"-d,--deep", "", "not flat", &flag}};
    command.examples = {{"Dig", "tavo dig here -d"}};
    return command;
}

TEST(DocumentsTest, PageOfACommand) {
    EXPECT_EQ(CommandPage(Sample(), "9.8"),
              ".TH TAVO\\-DIG 1 \"\" \"tavo 9.8\" \"User Commands\"\n"
              ".SH NAME\ntavo\\-dig \\- dig a hole\n"
              ".SH SYNOPSIS\ntavo dig [OPTION]... WHERE...\n"
              ".SH DESCRIPTION\nDig a hole.\n.PP\nTwo \\(rs words.\n"
              ".PP\n\\&.dotted \\(aqquote\\(aq\n"
              ".SH ARGUMENTS\n.TP\n.B WHERE\nThe place: here or there.\n"
              ".SH OPTIONS\n.TP\n.B \\-d, \\-\\-deep\nNot flat.\n"
              ".PP\nOptions of every command are told by\n.BR tavo (1).\n"
              ".SH EXIT STATUS\nAs told by\n.BR tavo (1).\n"
              ".SH EXAMPLES\nDig:\n.PP\n.nf\n.RS\ntavo dig here \\-d\n.RE\n.fi\n"
              ".SH SEE ALSO\n.BR tavo (1)\n");
}

TEST(DocumentsTest, HelpOfACommand) {
    EXPECT_EQ(CommandHelp(Sample(), Style(-1)),
              "Usage: tavo dig [OPTION]... WHERE...\nDig a hole.\n"
              "\nTwo \\ words.\n\n.dotted 'quote'\n"
              "\nArguments:\n  WHERE                     the place: here or there\n"
              "\nOptions:\n  -d, --deep                not flat\n"
              "\nExamples:\n  Dig:\n      tavo dig here -d\n"
              "\n'tavo --help' tells of the options that every command has.\n");
}

TEST(DocumentsTest, HelpAndPageHaveAllOfEveryCommand) {
    const std::string helpOfAll = RunTavo({"--help"}).out;
    const std::string pageOfAll = ReadFile(PAGES_FOLDER "/tavo.1");
    const std::string guide = ReadFile(SOURCE_FOLDER "/docs/tavo.md");
    for (const Command& command : Commands()) {
        SCOPED_TRACE(command.name);
        const Outcome outcome = RunTavo({command.name, "--help"});
        EXPECT_EQ(outcome, (Outcome{0, CommandHelp(command, Style(-1)), ""}));
        const std::string page = ReadFile(PAGES_FOLDER "/tavo-" + command.name + ".1");
        EXPECT_EQ(page, CommandPage(command, TAVO_VERSION));
        EXPECT_TRUE(Has(helpOfAll, "\n  " + command.name + " "));
        EXPECT_TRUE(Has(Without(pageOfAll, "\\"), "\n.BR tavo-" + command.name + " (1),"));
        EXPECT_TRUE(Has(guide, "| `" + command.name)) << "not in docs/tavo.md";
        ASSERT_FALSE(command.examples.empty());
        std::vector<Parameter> all = command.options;
        all.insert(all.end(), command.arguments.begin(), command.arguments.end());
        for (const Parameter& parameter : all) {
            EXPECT_TRUE(Has(outcome.out, "\n  " + Shown(parameter))) << parameter.name;
            EXPECT_TRUE(Has(Without(page, "\\"), ".B " + Shown(parameter) + "\n"))
                << parameter.name;
        }
        for (const Example& example : command.examples) {
            EXPECT_TRUE(Has(outcome.out, "\n      " + example.line + "\n")) << example.line;
            EXPECT_TRUE(Has(example.line, "tavo " + command.name)) << example.line;
        }
    }
}

TEST(DocumentsTest, LinesOfHelpFitATerminal) {
    std::vector<std::string> helps = {RunTavo({"--help"}).out};
    for (const Command& command : Commands()) {
        helps.push_back(CommandHelp(command, Style(-1)));
    }
    for (const std::string& help : helps) {
        std::istringstream lines(help);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 80U) << line;
        }
    }
}

TEST(DocumentsTest, HelpWinsOverWhatIsMissing) {
    const std::string help = RunTavo({"power", "-h"}).out;
    EXPECT_EQ(RunTavo({"-h", "power"}).out, help);
    EXPECT_EQ(RunTavo({"power", "--help", "bogus"}), (Outcome{0, help, ""}));
    EXPECT_EQ(RunTavo({"-h"}), RunTavo({"--help"}));
}

TEST(DocumentsTest, EveryListOfExitCodesIsTheTable) {
    const std::string help = RunTavo({"--help"}).out;
    const std::string page = Without(ReadFile(PAGES_FOLDER "/tavo.1"), "\\");
    std::string rows = "| Code | Meaning |\n|---|---|\n";
    int number = 0;
    for (const ExitCodeRow& row : ExitCodes()) {
        EXPECT_EQ(static_cast<int>(row.code), number);
        const std::string text = std::to_string(number++);
        EXPECT_TRUE(Has(help, "\n  " + text + "   " + row.meaning + "\n")) << row.meaning;
        EXPECT_TRUE(Has(page, "\n.TP\n.B " + text + "\n")) << row.meaning;
        rows += "| " + text + " | " + row.meaning + " |\n";
    }
    EXPECT_TRUE(Has(ReadFile(SOURCE_FOLDER "/docs/tavo.md"), "\n" + rows + "\n")) << rows;
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
