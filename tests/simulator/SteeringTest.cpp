#include "support/Wire.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class Steering : public ServerTest {};

const char done[] = "{\"ok\":true}\n";

TEST_F(Steering, QueuesCommandsAndPlansShutdowns) {
    EXPECT_EQ(Post("/sim/command", R"({"id":"p1","tag":"t","command":"c","isFile":true})"),
              ReplyText("200 OK", "application/json", done));
    EXPECT_EQ(Kept("commands"), R"([{"tag":"t","command":"c","isFile":true,"state":"queued"}])");
    EXPECT_EQ(BodyOf(Post("/sim/shutdown", R"({"id":"p1","inSeconds":100})")), done);
    const auto shutdown = FirstPayload(server.Port())->getObject("shutdown");
    EXPECT_EQ(JsonLine(*shutdown, "pending"), "false");
    EXPECT_EQ(JsonLine(*shutdown, "told"), "false");
    EXPECT_GT(shutdown->getValue<double>("inSeconds"), 0);
    EXPECT_LE(shutdown->getValue<double>("inSeconds"), 100);
}

TEST_F(Steering, RefusesBadJson) {
    const std::pair<std::string, std::string> commands[] = {
        {"", "The body is not valid JSON"},
        {"{", "The body is not valid JSON"},
        {"{\"id\":\"\xff\"}", "The body is not valid JSON"},
        {"[1]", "The body is not a JSON object"},
        {"{}", "Member 'id' must be a string"},
        {R"({"id":7,"tag":"t","command":"c"})", "Member 'id' must be a string"},
        {R"({"id":"","tag":"t","command":"c"})", "Member 'id' is empty"},
        {R"({"id":"p","command":"c"})", "Member 'tag' must be a string"},
        {R"({"id":"p","tag":"t","command":null})", "Member 'command' must be a string"},
        {R"({"id":"p","tag":"t","command":"c","isFile":1})",
         "Member 'isFile' must be true or false"},
        {R"({"id":"p","tag":"'\"","command":"c"})", "The tag contains both kinds of quotes"},
    };
    for (const auto& [body, line] : commands) {
        EXPECT_EQ(Post("/sim/command", body),
                  ReplyText("400 Bad Request", "text/plain", line + "\n"))
            << body;
    }
    for (const char* const seconds : {"-1", "\"5\"", "true", "null", "1e300"}) {
        EXPECT_EQ(
            BodyOf(Post("/sim/shutdown", std::string(R"({"id":"p","inSeconds":)") + seconds + "}")),
            "Member 'inSeconds' must be a number of seconds from 0 on\n")
            << seconds;
    }
    EXPECT_EQ(StatusLine(Post("/sim/command", std::string(1024 * 1024 + 1, ' '))),
              "HTTP/1.1 413 Request Entity Too Large");
    EXPECT_EQ(StatusLine(Post("/sim/command", std::string(100000, '['))),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(State(server.Port())->getArray("payloads")->size(), 0U);
}

TEST_F(Steering, RefusesUnknownTargetsAndMethods) {
    EXPECT_EQ(Get("/sim/nothing"),
              ReplyText("404 Not Found", "text/plain", "Nothing is steered here\n"));
    EXPECT_EQ(StatusLine(Get("/sim/command")), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_EQ(StatusLine(Post("/sim/state", "{}")), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_EQ(StatusLine(Post("/sim/files/x", "{}")), "HTTP/1.1 405 Method Not Allowed");
}

TEST_F(Steering, StateShowsVehicleAndPolls) {
    const auto state = State(server.Port());
    EXPECT_EQ(state->getNames(), (std::vector<std::string>{"vehicle", "heldPolls", "payloads"}));
    EXPECT_NEAR(state->getObject("vehicle")->getValue<double>("latitude"), 57.5, 0.0091);
    EXPECT_EQ(JsonLine(*state, "heldPolls"), "0");
    EXPECT_EQ(JsonLine(*state, "payloads"), "[]");
}

TEST_F(Steering, JournalShowsThePayloadsExchangesInOrder) {
    Get("/xp?op=off&id=p1");
    Get("/sim/state");
    Upload("/xp?op=nothing", "f", "n");
    const auto exchanges = Json(BodyOf(Get("/sim/journal")))->getArray("exchanges");
    ASSERT_EQ(exchanges->size(), 2U);
    const auto first = exchanges->getObject(0);
    EXPECT_EQ(first->getNames(),
              (std::vector<std::string>{"number", "time", "peer", "method", "target", "status",
                                        "reason", "requestBytes", "replyBytes", "seconds"}));
    EXPECT_EQ(first->getValue<std::string>("time").size(), 24U);
    EXPECT_EQ(first->getValue<std::string>("peer").rfind("127.0.0.1:", 0), 0U);
    EXPECT_EQ(JsonLine(*first, "target"), R"("/xp?op=off&id=p1")");
    EXPECT_EQ(JsonLine(*first, "replyBytes"), "2");
    const auto second = exchanges->getObject(1);
    EXPECT_EQ(JsonLine(*second, "number"), "2");
    EXPECT_EQ(JsonLine(*second, "method"), "\"POST\"");
    EXPECT_EQ(JsonLine(*second, "status"), "404");
    EXPECT_EQ(JsonLine(*second, "requestBytes"), std::to_string(FormText("f", "n").size()));
}

TEST_F(Steering, FilesAreFetchedByTheirKeptNameOnly) {
    WriteFile(folder.path + "/secret", "secret");
    Upload("/xp?op=upload&id=p1", "", "empty.txt");
    EXPECT_EQ(StatusLine(Get("/sim/files/empty.txt")), "HTTP/1.1 200 OK");
    EXPECT_EQ(BodyOf(Get("/sim/files/empty.txt")), "");
    for (const char* const name : {"", "../secret", "..%2Fsecret", "%2e%2e/secret", "missing"}) {
        EXPECT_EQ(Get(std::string("/sim/files/") + name),
                  ReplyText("404 Not Found", "text/plain", "No such file is kept\n"))
            << name;
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
