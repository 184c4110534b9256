#include "Options.h"

#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

std::string Complaint(const std::vector<std::string>& arguments) {
    try {
        ParseOptions(arguments);
    } catch (const BadOption& bad) {
        return bad.what();
    }
    return "none";
}

TEST(Options, Defaults) {
    const Options options = ParseOptions({});
    EXPECT_EQ(options.port, 8080);
    EXPECT_EQ(options.address, "127.0.0.1");
    EXPECT_EQ(options.dataFolder, "tavo-data");
    EXPECT_EQ(options.portFile, "");
    EXPECT_FALSE(options.quiet || options.help || options.version);
}

TEST(Options, ValuesFollowAsArgumentOrBehindEquals) {
    const Options options =
        ParseOptions({"--port", "0", "--address=::1", "--data=a=b", "--port-file", "p", "--quiet"});
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.address, "::1");
    EXPECT_EQ(options.dataFolder, "a=b");
    EXPECT_EQ(options.portFile, "p");
    EXPECT_TRUE(options.quiet);
    EXPECT_TRUE(ParseOptions({"--help"}).help);
    EXPECT_TRUE(ParseOptions({"--version"}).version);
}

TEST(Options, SaysWhatIsWrong) {
    for (const char* const port : {"65536", "-1", "x", "80x", " 80"}) {
        EXPECT_EQ(Complaint({"--port", port}),
                  std::string("--port needs a number from 0 to 65535, not '") + port + "'");
    }
    EXPECT_EQ(Complaint({"--address", "vehicle"}), "--address needs an IP address, not 'vehicle'");
    EXPECT_EQ(Complaint({"--data"}), "--data needs a value");
    EXPECT_EQ(Complaint({"--data="}), "--data needs a value");
    EXPECT_EQ(Complaint({"--por", "1"}), "unknown option '--por'; see --help");
    EXPECT_EQ(Complaint({"--quiet=1"}), "unknown option '--quiet=1'; see --help");
    EXPECT_EQ(Complaint({"stray"}), "unknown option 'stray'; see --help");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
