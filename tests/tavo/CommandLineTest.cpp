#include "support/SimulatorTest.h"

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

Outcome UsageOf(const std::string& line) {
    return {2, "", line + "\n"};
}

TEST(CommandLineTest, Version) {
    EXPECT_EQ(RunTavo({"--version"}), (Outcome{0, "tavo " TAVO_VERSION "\n", ""}));
}

TEST(CommandLineTest, MistakesAreOneLineWithAHint) {
    EXPECT_EQ(RunTavo(std::vector<std::string>{}),
              UsageOf("tavo: no command given; see 'tavo --help'"));
    EXPECT_EQ(RunTavo({"bogus"}), UsageOf("tavo: unknown command 'bogus'; see 'tavo --help'"));
    EXPECT_EQ(RunTavo({"--bogus"}), UsageOf("tavo: unknown option '--bogus'; see 'tavo --help'"));
    EXPECT_EQ(RunTavo({"off", "--bogus"}),
              UsageOf("tavo off: unknown option '--bogus'; see 'tavo off --help'"));
    EXPECT_EQ(RunTavo({"off", "extra"}),
              UsageOf("tavo off: unexpected argument 'extra'; see 'tavo off --help'"));
    EXPECT_EQ(RunTavo({"power", "on", "off"}),
              UsageOf("tavo power: unexpected argument 'off'; see 'tavo power --help'"));
    EXPECT_EQ(RunTavo({"off", "--server", "a", "--server", "b"}),
              UsageOf("tavo off: --server is given twice; see 'tavo off --help'"));
    EXPECT_EQ(RunTavo({"off", "--json=false"}),
              UsageOf("tavo off: --json takes no value; see 'tavo off --help'"));
    EXPECT_EQ(RunTavo({"off", "--json", "--quiet"}),
              UsageOf("tavo off: --json and --quiet exclude each other; see 'tavo off --help'"));
    EXPECT_EQ(RunTavo({"off\033[2J\n"}),
              UsageOf("tavo: unknown command 'off\\x1B[2J '; see 'tavo --help'"));
}

TEST(CommandLineTest, ServerIsHostAndPort) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "--server: 1 required HOST[:PORT] missing; see 'tavo off --help'"},
        {"http://10.0.0.2:80/xp",
         "the server 'http://10.0.0.2:80/xp' has a scheme; write '10.0.0.2:80'"},
        {"10.0.0.2/", "the server '10.0.0.2/' has more than host and port; write '10.0.0.2'"},
        {"10.0.0.2?a", "the server '10.0.0.2?a' has more than host and port; write '10.0.0.2'"},
        {"http://", "the server 'http://' has a scheme; write HOST or HOST:PORT"},
        {"a b", "the server 'a b' is not an address; write HOST or HOST:PORT"},
        {"me@host", "the server 'me@host' is not an address; write HOST or HOST:PORT"},
    };
    for (const auto& [server, line] : cases) {
        EXPECT_EQ(RunTavo({"off", "--id", "P1", "--server=" + server}),
                  UsageOf("tavo off: " + line));
    }
    EXPECT_EQ(RunTavo({"off", "--id", "P1"}),
              UsageOf("tavo off: no server given; name it with --server HOST:PORT or in "
                      "TAVO_SERVER"));
}

TEST(CommandLineTest, OnePayloadIsNamed) {
    const std::string none = "tavo off: no payload given; name it with --id ID or in TAVO_ID";
    EXPECT_EQ(RunTavo({"off", "--server", "h"}), UsageOf(none));
    EXPECT_EQ(RunTavo({"off", "--server", "h", "--id", ""}), UsageOf(none));
    EXPECT_EQ(RunTavo({"off", "--server", "h", "--id", "P1", "--id", "P2"}),
              UsageOf("tavo off: --id is given twice; this command is about one payload"));
}

using ServedCommandLineTest = SimulatorTest;

TEST_F(ServedCommandLineTest, EnvironmentNamesServerAndPayloadUnlessOptionsDo) {
    const Outcome done = {0, "P1: to be switched off\n", ""};
    EXPECT_EQ(RunTavo(Call{{"off"}, {"TAVO_SERVER=" + server, "TAVO_ID=P1"}}), done);
    EXPECT_EQ(RunTavo(Call{{"-s", server, "off", "-iP1"}, {"TAVO_SERVER=no/where", "TAVO_ID=P2"}}),
              done);
}

TEST_F(ServedCommandLineTest, ValuesArriveAsTheyAreGiven) {
    for (const std::string script : {"off", "[a,b]", "{}", "%%", "\"q\"", "-5", "a=b", "'"}) {
        const Outcome outcome = RunTavo({"script", "--server", server, "--id", "P1", script});
        EXPECT_EQ(outcome,
                  (Outcome{0, "simulated output of '" + script + "'\nnothing was run\n", ""}));
    }
    EXPECT_EQ(RunTavo({"script", "-s", server, "-i", "P1", "--", "--json"}),
              (Outcome{0, "simulated output of '--json'\nnothing was run\n", ""}));
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
