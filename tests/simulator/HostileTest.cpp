// Clients that mean no good, or know no better, against the simulator.

#include "support/Mutations.h"
#include "support/Wire.h"

#include <Poco/Exception.h>
#include <memory>
#include <sys/resource.h>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class Hostile : public ServerTest {
protected:
    /// What comes back for this; whether it is hung up by a close or by a reset is the same.
    std::string Thrown(const std::string& bytes) const {
        try {
            Connection connection(server.Port());
            connection.Send(bytes);
            connection.EndSending();
            return connection.ReadAll();
        } catch (const Poco::Exception&) {
            return "";
        }
    }

    void ExpectRefused(const std::string& bytes) const {
        // The answer can be lost on one who is still sending.
        const std::string line = StatusLine(Thrown(bytes));
        EXPECT_TRUE(line.empty() || line == "HTTP/1.1 400 Bad Request") << line;
    }

    void ExpectWell() const {
        EXPECT_EQ(Get("/xp?op=off&id=P1"), okReply);
        EXPECT_EQ(Entries(folder.path), std::vector<std::string>{"data"});
        for (const std::string& name : Entries(folder.path + "/data")) {
            EXPECT_EQ(SafeName(name), name);
        }
    }
};

TEST_F(Hostile, ThousandsOfBrokenRequestsDoNoHarm) {
    Mutations mutations(20261121);
    std::size_t answered = 0;
    for (int i = 0; i < 1000; ++i) {
        answered += Thrown(mutations.Next()).empty() ? 0U : 1U;
    }
    EXPECT_GT(answered, 500U);
    ExpectWell();
}

TEST_F(Hostile, OverlongHeadsAreRefused) {
    const std::string get = "GET /xp?op=off&id=P1 HTTP/1.1\r\n";
    std::string manyLines = get;
    for (int i = 0; i < 100000; ++i) {
        manyLines += "X: y\r\n";
    }
    const std::string heads[] = {
        "GET /" + std::string(1000000, 'a') + " HTTP/1.1\r\n\r\n",
        std::string(1000000, 'A'),
        get + "X: " + std::string(1000000, 'a') + "\r\n\r\n",
        get + std::string(1000000, 'a') + ": x\r\n\r\n",
        manyLines,
    };
    for (const std::string& head : heads) {
        ExpectRefused(head);
    }
    EXPECT_EQ(State(server.Port())["payloads"].size(), 0U) << "none was carried out";
    ExpectWell();
}

TEST_F(Hostile, AnEndlessChunkSizeIsRefused) {
    const std::string head = "POST /xp?op=upload&id=P1 HTTP/1.1\r\nHost: v\r\n"
                             "Content-Type: multipart/form-data; boundary=BOUNDARY\r\n"
                             "Transfer-Encoding: chunked\r\n\r\n";
    for (const char digit : {'1', '0', ';', '\n'}) {
        ExpectRefused(head + std::string(1000000, digit));
    }
    ExpectWell();
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
}

TEST_F(Hostile, AFormOfVeryManyPartsIsRefused) {
    std::string form;
    for (int i = 0; i < 101; ++i) {
        form += "--BOUNDARY\r\nContent-Disposition: form-data; name=\"p" + std::to_string(i) +
                "\"\r\n\r\nx\r\n";
    }
    const char type[] = "multipart/form-data; boundary=BOUNDARY";
    EXPECT_EQ(BodyOf(Thrown(PostText("/xp?op=jar&id=P1", type, form))),
              "The form has too many parts\n");
    std::string part = "--BOUNDARY\r\n";
    for (int i = 0; i < 21; ++i) {
        part += "X: y\r\n";
    }
    EXPECT_EQ(BodyOf(Thrown(PostText("/xp?op=jar&id=P1", type, part))),
              "A form part has too many header lines\n");
}

TEST_F(Hostile, IdleConnectionsKeepNobodyOut) {
    // More than there are threads and places in the queue; both ends are this process's.
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    constexpr std::size_t count = 1500;
    std::vector<std::unique_ptr<Connection>> idle;
    idle.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        idle.push_back(std::make_unique<Connection>(server.Port()));
    }
    ExpectWell();
    Connection poll(server.Port());
    poll.Send(GetText("/xp?op=poll&id=P1&format=2&timeout=50000"));
    AwaitHeldPolls(server.Port(), 1);
    Post("/sim/v1/commands", R"({"id":"P1","tag":"t","command":"go"})");
    EXPECT_EQ(BodyOf(poll.ReadAll()), "{\"commands\":[{\"command\":\"'t'go\",\"id\":\"P1\"}]}\n");
    idle.front()->Send(GetText("/xp?op=off&id=P1"));
    EXPECT_EQ(idle.front()->ReadAll(), okReply) << "one that waited is served, too";
}

TEST(HostileHeads, WhoeverIsSlowWithItIsHungUpOn) {
    const TempFolder folder;
    Settings settings = SettingsIn(folder.path);
    settings.longestHeadSeconds = 0.1;
    World world(settings);
    const Server server(world, "127.0.0.1", 0, nullptr);
    Connection slow(server.Port());
    slow.Send("GET /xp?op=off&id=P1 HTTP/1.1\r\nHo");
    slow.ReadAll();
    while (world.traffic.Entries().empty()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(world.traffic.Entries()[0].flags, std::vector<std::string>{"not an HTTP request"});
}

TEST_F(Hostile, TooManyHeldPollsAreRefusedAndAPersonStillGetsThrough) {
    std::vector<std::unique_ptr<Connection>> polls;
    for (std::size_t i = 0; i < PayloadRegistry::mostHeldPolls; ++i) {
        polls.push_back(std::make_unique<Connection>(server.Port()));
        polls.back()->Send(GetText("/xp?op=poll&id=P1&format=2&timeout=50000"));
    }
    AwaitHeldPolls(server.Port(), polls.size());
    EXPECT_EQ(Get("/xp?op=poll&id=P2&format=2&timeout=50000"),
              ReplyText("503 Service Unavailable", "text/plain",
                        "There are 448 held polls already, which is the most\n"));
    EXPECT_EQ(BodyOf(Get("/xp?op=poll&id=P2&format=2&timeout=0")), "{\"timeout\":true}\n");
}

TEST_F(Hostile, TooManyWhoListenAreRefused) {
    const char target[] = "/sim/v1/events";
    std::vector<std::unique_ptr<Connection>> pages;
    for (int i = 0; i < 32; ++i) {
        pages.push_back(std::make_unique<Connection>(server.Port()));
        pages.back()->Send(GetText(target));
        EXPECT_EQ(StatusLine(pages.back()->ReadUntil("\r\n\r\n")), "HTTP/1.1 200 OK");
    }
    EXPECT_EQ(Get(target), ReplyText("503 Service Unavailable", "text/plain",
                                     "32 event streams are open already, which is the limit\n"));
    pages.clear();
    while (world.listeners > 0) {
        std::this_thread::yield();
    }
    Connection next(server.Port());
    next.Send(GetText(target));
    EXPECT_EQ(StatusLine(next.ReadUntil("\r\n\r\n")), "HTTP/1.1 200 OK");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
