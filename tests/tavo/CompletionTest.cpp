#include "core/Completion.h"
#include "commands/Commands.h"
#include "support/CleanTest.h"
#include "support/Program.h"

#include <gtest/gtest.h>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using Texts = std::vector<std::string>;

/// What bash offers for the last word, in its order, one to a line.
class BashCompletionTest : public TavoRemotingLib::Testing::CleanTest {
protected:
    std::string Offered(const Texts& words) const {
        std::string script = "source " PAGES_FOLDER "/tavo.bash; cd " + Folder() + "; COMP_WORDS=(";
        for (const std::string& word : words) {
            script += "'" + word + "' ";
        }
        script += ") COMP_CWORD=" + std::to_string(words.size() - 1) +
                  "; _tavo; printf '%s\\n' \"${COMPREPLY[@]}\"";
        TavoRemotingLib::Testing::Program bash({"bash", "--norc", "-c", script});
        EXPECT_EQ(bash.Wait(), 0);
        EXPECT_EQ(bash.Errors(), "");
        return bash.RestOfOutput();
    }
};

TEST_F(BashCompletionTest, OffersCommands) {
    std::string all;
    for (const Command& command : Commands()) {
        all += command.name + "\n";
    }
    EXPECT_EQ(Offered({"tavo", ""}), all);
    EXPECT_EQ(Offered({"tavo", "po"}), "poll\npower\n");
    EXPECT_EQ(Offered({"tavo", "--json", "-s", "off", "-i", "poll", "of"}), "off\n");
}

TEST_F(BashCompletionTest, OffersOptionsOfTheCommandAndOfAll) {
    EXPECT_EQ(Offered({"tavo", "power", "--s"}), "--server\n--switch\n");
    EXPECT_EQ(Offered({"tavo", "off", "--s"}), "--server\n");
    EXPECT_EQ(Offered({"tavo", "--s"}), "--server\n");
    EXPECT_EQ(Offered({"tavo", "off", "--hel"}), "--help\n");
}

TEST_F(BashCompletionTest, OffersChoicesAndFiles) {
    MakeFile("a b", "");
    MakeFile("ac", "");
    EXPECT_EQ(Offered({"tavo", "power", ""}), "on\noff\n");
    EXPECT_EQ(Offered({"tavo", "power", "--switch", ""}), "\n");
    EXPECT_EQ(Offered({"tavo", "send-file", "a"}), "a b\nac\n");
    EXPECT_EQ(Offered({"tavo", "send-file", "--remote", "a"}), "\n");
    EXPECT_EQ(Offered({"tavo", "respond", "a"}), "\n");
}

TEST(ZshCompletionTest, SpecifiesCommandsOptionsAndArguments) {
    std::string text;
    int level = 0;
    Parameter file{"FILE", "", "it's [a]: file", &text};
    file.isFile = true;
    Command command;
    command.name = "dig";
    command.summary = "dig: a hole";
    command.arguments = {{"WHERE", "", "the place", &text, {"here", "there"}}, file};
    command.options = {{"--as", "NAME", "a name", &text}};
    const std::string script = ZshCompletion({{"-v,--verbose", "", "more", &level}}, {command});
    for (const std::string part : {"#compdef tavo\n", "        'dig:dig\\: a hole'\n",
                                   "        '*-v[more]'\n        '*--verbose[more]'\n",
                                   "    dig)\n        rules+=(\n"
                                   "        '(--as)--as[a name]:NAME: '\n"
                                   "        '1:WHERE:(here there)'\n"
                                   "        '2:FILE:_files'\n        ) ;;\n"}) {
        EXPECT_NE(script.find(part), std::string::npos) << part << "\n-- in --\n" << script;
    }
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
