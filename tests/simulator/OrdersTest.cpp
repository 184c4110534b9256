#include "support/Wire.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class Orders : public ServerTest {};

TEST_F(Orders, OffMarksThePayloadAndSettlesItsShutdown) {
    Post("/sim/v1/shutdown", R"({"id":"p 1","inSeconds":0})");
    EXPECT_EQ(Get("/xp?op=off&id=p%201"), okReply);
    EXPECT_EQ(Kept("id"), "\"p 1\"");
    EXPECT_EQ(Kept("off"), "true");
    EXPECT_EQ(Kept("shutdown"), "null");
}

TEST_F(Orders, PowerKeepsNamedSwitchesAndTheMainOneApart) {
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&sw=S%202&cmd=on"), okReply);
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&sw=lamp&cmd=on"), okReply);
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&sw=lamp&cmd=off"), okReply);
    EXPECT_EQ(Kept("switches"), R"({"S 2":true,"lamp":false})");
    EXPECT_EQ(Kept("mainSwitch"), "null");
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&cmd=off"), okReply);
    EXPECT_EQ(Kept("mainSwitch"), "false");
    EXPECT_EQ(Get("/xp?op=off&id=p1"), okReply);
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&cmd=on"), okReply);
    EXPECT_EQ(Kept("mainSwitch"), "true");
    EXPECT_EQ(Kept("off"), "false");
}

TEST_F(Orders, ThereIsAMostOfSwitches) {
    world.payloads.Change("p1", [](Payload& payload) {
        for (int i = 0; i < 1000; ++i) {
            payload.switches["S" + std::to_string(i)] = true;
        }
    });
    const char refused[] = "There are 1000 switches already, which is the most\n";
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&sw=new&cmd=on"),
              ReplyText("403 Forbidden", "text/plain", refused));
    EXPECT_EQ(BodyOf(Post("/sim/v1/switches", R"({"id":"p1","name":"new","on":true})")), refused);
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&sw=S7&cmd=off"), okReply);
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&cmd=off"), okReply);
}

TEST_F(Orders, ScriptAnswersCannedTextAndRunsNothing) {
    const std::string mark = folder.path + "/mark";
    EXPECT_EQ(Get("/xp?op=script&id=p1&cmd=touch%20" + mark),
              ReplyText("200 OK", "text/plain",
                        "simulated output of 'touch " + mark + "'\nnothing was run\n"));
    EXPECT_FALSE(std::filesystem::exists(mark));
    EXPECT_EQ(BodyOf(Get("/xp?op=script&id=p1&cmd=a%0Ab")),
              "simulated output of 'a\\x0Ab'\nnothing was run\n");
}

TEST_F(Orders, MetaDoneCompletesTheRegistration) {
    Upload("/xp?op=meta&id=p1", "", "t");
    EXPECT_EQ(Kept("registrationComplete"), "false");
    EXPECT_EQ(Get("/xp?op=metadone&id=p1"), okReply);
    EXPECT_EQ(Kept("registrationComplete"), "true");
}

TEST_F(Orders, OffDelayMovesAShutdownThatIsDue) {
    const std::string poll = "/xp?op=poll&id=p1&format=2&shutdown=true&timeout=0";
    Post("/sim/v1/shutdown", R"({"id":"p1","inSeconds":0})");
    EXPECT_EQ(BodyOf(Get(poll)), "{\"shutdown\":true}\n");
    EXPECT_EQ(Get("/xp?op=offdelay&id=p1&delay=1000&setdefault=0"), okReply);
    EXPECT_EQ(BodyOf(Get(poll)), "{\"timeout\":true}\n");
    EXPECT_EQ(Get("/xp?op=offdelay&id=p1&delay=-2000&setdefault=0"), okReply);
    EXPECT_EQ(BodyOf(Get(poll)), "{\"shutdown\":true}\n");
    EXPECT_EQ(Get("/xp?op=offdelay&id=other&delay=5&setdefault=0"), okReply);
}

TEST_F(Orders, RefusesBadRequestsWithStatusAndOneLine) {
    const std::pair<std::string, std::string> cases[] = {
        {"/xp", "Parameter 'op' is missing"},
        {"/xp?op=", "Parameter 'op' is empty"},
        {"/xp?op=off", "Parameter 'id' is missing"},
        {"/xp?op=off&id=", "Parameter 'id' is empty"},
        {"/xp?op=off&id=%4", "The request target has a broken escape"},
        {"/xp?op=metadone", "Parameter 'id' is missing"},
        {"/xp?op=pwr&id=p1", "Parameter 'cmd' is missing"},
        {"/xp?op=pwr&cmd=on", "Parameter 'id' is missing"},
        {"/xp?op=pwr&id=p1&cmd=ON", "Parameter 'cmd' must be on or off, not 'ON'"},
        {"/xp?op=pwr&id=p1&cmd=a%0D%0Ab", "Parameter 'cmd' must be on or off, not 'a\\x0D\\x0Ab'"},
        {"/xp?op=pwr&id=p1&sw=&cmd=on", "Parameter 'sw' is empty"},
        {"/xp?op=script&id=p1", "Parameter 'cmd' is missing"},
        {"/xp?op=offdelay&id=p1", "Parameter 'delay' is missing"},
        {"/xp?op=offdelay&id=p1&delay=1.5", "Parameter 'delay' is not a usable number: '1.5'"},
    };
    for (const auto& [target, line] : cases) {
        EXPECT_EQ(Get(target), ReplyText("400 Bad Request", "text/plain", line + "\n")) << target;
    }
    EXPECT_EQ(State(server.Port())["payloads"].size(), 0U);
}

TEST_F(Orders, RefusesUnknownTargetsAndMethods) {
    EXPECT_EQ(Get("/xp?op=Off&id=p1"),
              ReplyText("404 Not Found", "text/plain", "Unknown operation 'Off'\n"));
    EXPECT_EQ(Get("/nothing"), ReplyText("404 Not Found", "text/plain",
                                         "Nothing is served here; see /xp and /sim/v1/\n"));
    const std::pair<const char*, const char*> methods[] = {
        {"off", "GET"},      {"pwr", "GET"},   {"script", "GET"},     {"metadone", "GET"},
        {"offdelay", "GET"}, {"poll", "GET"},  {"jar", "POST"},       {"reply", "POST"},
        {"upload", "POST"},  {"meta", "POST"}, {"rawpacket", "POST"}, {"uploadlegacy", "POST"}};
    for (const auto& [operation, method] : methods) {
        const std::string target = std::string("/xp?op=") + operation + "&id=p1";
        const std::string line = std::string("This takes the method ") + method + " only\n";
        EXPECT_EQ(std::string(method) == "GET" ? Upload(target, "f", "n") : Get(target),
                  "HTTP/1.1 405 Method Not Allowed\r\nConnection: Close\r\nAllow: " +
                      std::string(method) + "\r\nContent-Type: text/plain\r\nContent-Length: " +
                      std::to_string(line.size()) + "\r\n\r\n" + line)
            << operation;
    }
}

TEST_F(Orders, RefusesBrokenFrames) {
    EXPECT_EQ(StatusLine(Exchange(server.Port(), "GET /xp?op=off&id=a b HTTP/1.1\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(StatusLine(Exchange(server.Port(), "GET /xp?op=off&id=a HTTP/2.0\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(StatusLine(Exchange(server.Port(), "POST /xp?op=meta HTTP/1.1\r\nHost: v\r\n\r\n")),
              "HTTP/1.1 411 Length Required");
    EXPECT_EQ(StatusLine(Exchange(server.Port(), "GET /xp?op=off&id=" + std::string(20000, 'x') +
                                                     " HTTP/1.1\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");
}

TEST_F(Orders, AConnectionServesOneRequestAfterTheOther) {
    const std::string refusal = "Unknown operation 'x'\n";
    const std::string form = FormText("left unread", "n");
    Connection connection(server.Port());
    connection.Send("POST /xp?op=x HTTP/1.1\r\nHost: v\r\nContent-Length: " +
                    std::to_string(form.size()) + "\r\n\r\n" + form + GetText("/xp?op=off&id=p1"));
    EXPECT_EQ(StatusLine(connection.ReadAll()), "HTTP/1.1 404 Not Found");
    EXPECT_EQ(Kept("off"), "true");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
