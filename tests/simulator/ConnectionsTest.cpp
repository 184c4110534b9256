// Limits, connections that serve several requests, and the stream of events, over real sockets.

#include "support/Wire.h"

#include <memory>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos;
         at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

class Limits : public ::testing::Test {
protected:
    static Settings Small(const std::string& folder) {
        Settings settings = SettingsIn(folder + "/data");
        settings.mostPayloads = 2;
        settings.mostUploadBytes = 10;
        return settings;
    }

    const TempFolder folder;
    World world{Small(folder.path)};
    Server server{world, "127.0.0.1", 0, nullptr};
};

TEST_F(Limits, OnePayloadTooManyIsRefused) {
    const std::string refused = ReplyText("403 Forbidden", "text/plain",
                                          "There are 2 payloads already, which is the most\n");
    EXPECT_EQ(Exchange(server.Port(), GetText("/xp?op=off&id=a")), okReply);
    EXPECT_EQ(Exchange(server.Port(), UploadText("/xp?op=jar&id=b", "jar", "n")), okReply);
    for (const char* const target :
         {"/xp?op=off&id=c", "/xp?op=poll&id=a&id=c&format=2&timeout=50000"}) {
        EXPECT_EQ(Exchange(server.Port(), GetText(target)), refused);
    }
    EXPECT_EQ(Exchange(server.Port(), PostText("/sim/v1/commands", "application/json",
                                               R"({"id":"c","command":"x"})")),
              refused);
    EXPECT_EQ(Exchange(server.Port(), GetText("/xp?op=off&id=a")), okReply);
    Exchange(server.Port(), PostText("/sim/v1/forget", "application/json", R"({"id":"a"})"));
    EXPECT_EQ(Exchange(server.Port(), GetText("/xp?op=off&id=c")), okReply);
}

TEST_F(Limits, AnUploadTooLargeIsRefusedAndLeavesNothing) {
    const auto upload = [&](const std::string& content) {
        return Exchange(server.Port(), UploadText("/xp?op=upload&id=a", content, "n"));
    };
    EXPECT_EQ(upload("0123456789"), okReply);
    EXPECT_EQ(upload("0123456789a"), ReplyText("413 Request Entity Too Large", "text/plain",
                                               "Form part is larger than 10 bytes\n"));
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{"n"});
    EXPECT_EQ(Exchange(server.Port(), UploadText("/xp?op=reply&id=a&tag=t",
                                                 std::string(16 * 1024 * 1024 + 1, 'x'), "n")),
              ReplyText("413 Request Entity Too Large", "text/plain",
                        "Form part is larger than 16777216 bytes\n"));
}

class Connections : public ServerTest {};

TEST_F(Connections, OneServesSeveralRequests) {
    const std::string get = "GET /xp?op=off&id=P1 HTTP/1.1\r\nHost: v\r\n\r\n";
    std::string post = UploadText("/xp?op=nothing&id=P1", "unread", "n");
    post.erase(post.find("Connection: close\r\n"), sizeof "Connection: close\r\n" - 1);
    Connection connection(server.Port());
    connection.Send(get);
    connection.Send(post + "GET /sim/v1/registration?id=P1 HTTP/1.1\r\nHost: localhost\r\n\r\n");
    connection.Send(get);
    connection.EndSending();
    const std::string replies = connection.ReadAll();
    EXPECT_EQ(Count(replies, "HTTP/1.1 "), 4U);
    EXPECT_EQ(Count(replies, "Connection: Keep-Alive\r\n"), 4U);
    EXPECT_EQ(Count(replies, "Unknown operation 'nothing'\n"), 1U);
    EXPECT_EQ(Count(replies, "This payload is not registered\n"), 1U);
    EXPECT_EQ(world.traffic.Entries().size(), 3U);
    EXPECT_EQ(world.traffic.Entries()[2].target, "/xp?op=off&id=P1");
}

TEST(Events, BringTheStateAndEachExchangeAndEndWithTheServer) {
    const TempFolder folder;
    World world(SettingsIn(folder.path));
    auto server = std::make_unique<Server>(world, "127.0.0.1", std::uint16_t{0}, nullptr);
    Exchange(server->Port(), GetText("/xp?op=off&id=before"));
    Connection events(server->Port());
    events.Send(GetText("/sim/v1/events"));
    const std::string head = events.ReadUntil("\r\n\r\n");
    EXPECT_EQ(Count(head, "Content-Type: text/event-stream\r\n"), 1U);
    EXPECT_EQ(Count(head, "Cache-Control: no-store\r\n"), 1U);
    const std::string first = events.ReadUntil("\n\n");
    EXPECT_EQ(Count(first, "event: state\ndata: {\"allowScripts\":false,\"clock\":"), 1U) << first;
    EXPECT_EQ(Count(first, "\"id\":\"before\""), 1U);
    Exchange(server->Port(), GetText("/xp?op=off&id=after"));
    events.ReadUntil("event: traffic\ndata: ");
    const std::string news = events.ReadUntil("\n\n");
    EXPECT_EQ(Count(news, "\"target\":\"/xp?op=off&id=after\""), 1U) << news;
    EXPECT_EQ(Count(news, "\"target\":\"/xp?op=off&id=before\""), 0U);
    server.reset();
    EXPECT_EQ(Count(events.ReadAll(), "\r\n0\r\n\r\n"), 1U) << "it ends as it should";
}

TEST(Events, AllEndAsTheyShouldWithTheServer) {
    const TempFolder folder;
    World world(SettingsIn(folder.path));
    auto server = std::make_unique<Server>(world, "127.0.0.1", std::uint16_t{0}, nullptr);
    std::vector<std::unique_ptr<Connection>> pages;
    for (int i = 0; i < 30; ++i) {
        pages.push_back(std::make_unique<Connection>(server->Port()));
        pages.back()->Send(GetText("/sim/v1/events"));
        pages.back()->ReadUntil("\n\n");
    }
    server.reset();
    for (const auto& page : pages) {
        EXPECT_EQ(Count(page->ReadAll(), "\r\n0\r\n\r\n"), 1U);
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
