#include "support/ProcessTest.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

constexpr char poll[] = "/xp?op=poll&id=P1&format=2&timeout=0";
constexpr char commands[] = "/sim/v1/commands";

class JournalProcessTest : public ProcessTest {
protected:
    /// The bytes of a reply, header line "Date" and all.
    static std::string Raw(std::uint16_t port, const std::string& request) {
        Poco::Net::StreamSocket socket(Poco::Net::SocketAddress("127.0.0.1", port));
        socket.sendBytes(request.data(), static_cast<int>(request.size()));
        std::string reply;
        char piece[4096];
        for (int count = 0; (count = socket.receiveBytes(piece, sizeof piece)) > 0;) {
            reply.append(piece, static_cast<std::size_t>(count));
        }
        return reply;
    }

    static void End(Process& process) {
        process.Signal(SIGTERM);
        EXPECT_EQ(process.Wait(), 0);
        EXPECT_EQ(process.Errors(), "");
    }

    const std::string journal = folder.path + "/journal";
};

TEST_F(JournalProcessTest, AReplayIsByteForByteWhatWasRecorded) {
    std::vector<std::string> recorded;
    const std::vector<std::string> requests{
        GetText(poll), GetText(poll), GetText("/xp?op=script&id=P1&cmd=df"),
        UploadText("/xp?op=upload&id=P1", "content", "n"), GetText("/nowhere")};
    {
        Process process(Arguments({"--quiet", "--journal", journal}));
        const std::uint16_t port = AwaitPort(process);
        Exchange(port, PostText(commands, "application/json", R"({"id":"P1","command":"c"})"));
        for (const std::string& request : requests) {
            recorded.push_back(Raw(port, request));
        }
        End(process);
    }
    Process process(Arguments({"--quiet", "--replay", journal}));
    const std::uint16_t port = AwaitPort(process);
    for (std::size_t i = 0; i < requests.size(); ++i) {
        EXPECT_EQ(Raw(port, requests[i]), recorded[i]);
    }
    EXPECT_NE(recorded[0], recorded[1]);
    EXPECT_EQ(Raw(port, GetText(poll)), recorded[1]); // the last one again
    EXPECT_EQ(Exchange(port, GetText("/xp?op=off&id=P1")),
              ReplyText("404 Not Found", "text/plain", "Nothing was recorded for this request\n"));
    EXPECT_EQ(State(port)["payloads"].size(), 0U);
    EXPECT_EQ(Entries(folder.path + "/data"), (std::vector<std::string>{"n"}));
    End(process);
}

TEST_F(JournalProcessTest, AReplayTakesItsTimeOnTheSimulatorsClock) {
    WriteFile(journal, R"({"method":"GET","target":"/xp","replyBytes":3,"reply":"YWJj",)"
                       R"("seconds":3600,"status":200,"reason":"OK"})"
                       "\n");
    Process process(Arguments({"--replay", journal, "--speed", "0"}));
    const std::uint16_t port = AwaitPort(process);
    Connection connection(port);
    connection.Send(GetText("/xp"));
    while (ParsedJson(BodyOf(Exchange(port, GetText("/sim/v1/traffic"))))["last"].asInt() == 0) {
    }
    Exchange(port, PostText("/sim/v1/clock", "application/json", R"({"stepSeconds":3599})"));
    EXPECT_TRUE(connection.IsSilent());
    Exchange(port, PostText("/sim/v1/clock", "application/json", R"({"stepSeconds":1})"));
    EXPECT_EQ(connection.ReadAll(), "abc");
    EXPECT_NE(process.ReadLine().find(" GET /xp ("), std::string::npos);
    End(process);
}

TEST_F(JournalProcessTest, EndsQuicklyWhileRepliesAreHeldBack) {
    WriteFile(journal, R"({"method":"GET","target":"/xp","replyBytes":3,"reply":"YWJj",)"
                       R"("seconds":3600,"status":200,"reason":"OK"})"
                       "\n");
    Process process(Arguments({"--quiet", "--replay", journal}));
    const std::uint16_t port = AwaitPort(process);
    Connection connection(port);
    connection.Send(GetText("/xp"));
    while (ParsedJson(BodyOf(Exchange(port, GetText("/sim/v1/traffic"))))["last"].asInt() == 0) {
    }
    const Clock clock;
    End(process);
    EXPECT_LT(clock.Seconds(), 5);
    EXPECT_EQ(connection.ReadAll(), "");
}

TEST_F(JournalProcessTest, HeldPollsAreInTheJournalOfAStop) {
    Process process(Arguments({"--quiet", "--journal", journal}));
    const std::uint16_t port = AwaitPort(process);
    Connection connection(port);
    connection.Send(GetText("/xp?op=poll&id=P1&format=2&timeout=3600000"));
    AwaitHeldPolls(port, 1);
    EXPECT_EQ(ReadFile(journal), "");
    End(process);
    const Json::Value line = ParsedJson(ReadFile(journal));
    EXPECT_EQ(line["status"].asInt(), 503);
    EXPECT_FALSE(line["open"].asBool());
}

TEST_F(JournalProcessTest, AJournalThatCannotBeWrittenIsAFailureInTheEnd) {
    Process process(Arguments({"--quiet", "--journal", "/dev/full"}));
    const std::uint16_t port = AwaitPort(process);
    EXPECT_EQ(Exchange(port, GetText("/xp?op=off&id=P1")), okReply);
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 1);
    EXPECT_EQ(process.Errors(), "tavo-simulator: the journal '/dev/full' cannot be written: No "
                                "space left on device\n");
}

TEST_F(JournalProcessTest, AJournalThatCannotBeReplayedIsOneLineAndExitCodeTwo) {
    WriteFile(journal, "{}\n");
    Process process(Arguments({"--replay", journal}));
    EXPECT_EQ(process.Wait(), 2);
    EXPECT_EQ(process.Errors(),
              "tavo-simulator: " + journal + ": line 1: member 'method' must be a string\n");
    EXPECT_EQ(Entries(folder.path), std::vector<std::string>{"journal"});
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
