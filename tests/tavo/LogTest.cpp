#include "support/CleanTest.h"
#include "support/ScriptedServer.h"
#include "support/TavoProcess.h"

#include <memory>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using namespace TavoRemotingLib::Testing;

class LogTest : public CleanTest {
protected:
    void SetUp() override {
        CleanTest::SetUp();
        server = std::make_unique<ScriptedServer>(OkReply("done"));
        get = "HTTP GET http://" + server->Address() + "/xp?op=off&id=P1\n";
    }
    void TearDown() override {
        server.reset();
        CleanTest::TearDown();
    }

    std::string Log(const std::vector<std::string>& words) const {
        std::vector<std::string> all = {"-s", server->Address(), "-i", "P1"};
        all.insert(all.end(), words.begin(), words.end());
        const Outcome outcome = RunTavo(all);
        EXPECT_EQ(outcome.code, 0);
        return outcome.err;
    }

    std::unique_ptr<ScriptedServer> server;
    std::string get;
    const std::string headers = "\nReturned headers:\n\n\n";
};

TEST_F(LogTest, IsShownWhenAskedFor) {
    EXPECT_EQ(Log({"off"}), "");
    EXPECT_EQ(Log({"off", "-v"}), get);
    EXPECT_EQ(Log({"respond", "t", "AB"}), "");
    const std::string upload = Log({"respond", "t", "AB", "-v"});
    EXPECT_EQ(
        upload.rfind("HTTP POST http://" + server->Address() + "/xp?op=reply&id=P1&tag=t\n", 0), 0U)
        << upload;
    EXPECT_NE(upload.find("41 42"), std::string::npos) << upload;
    EXPECT_EQ(upload.find(headers), std::string::npos) << upload;
}

TEST_F(LogTest, HasRepliesWhenAskedForTwice) {
    for (const std::vector<std::string>& twice : {std::vector<std::string>{"off", "-vv"},
                                                  {"off", "-v", "--verbose"},
                                                  {"-v", "off", "-v"}}) {
        const std::string log = Log(twice);
        EXPECT_EQ(log.rfind(get + headers + "HTTP/1.1 200 OK\r\n", 0), 0U) << log;
        EXPECT_NE(log.find("\nReturned data (4):\n\ndone\n"), std::string::npos) << log;
    }
}

TEST_F(LogTest, TraceIsLibcurls) {
    const std::string trace = Log({"off", "--trace"});
    EXPECT_NE(trace.find("\n> GET /xp?op=off&id=P1 HTTP/1.1\r\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("\n< HTTP/1.1 200 OK\r\n"), std::string::npos) << trace;
    EXPECT_EQ(trace.find(get), std::string::npos) << trace;
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
