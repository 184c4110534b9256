#include "support/Wire.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class Control : public ServerTest {};

const char done[] = "{\"ok\":true}\n";

TEST_F(Control, QueuesCommandsAndFillsInTheTag) {
    EXPECT_EQ(Post("/sim/v1/commands", R"({"id":"p1","tag":"mine","command":"c","isFile":true})"),
              ReplyText("200 OK", "application/json", "{\"number\":1,\"tag\":\"mine\"}\n"));
    EXPECT_EQ(BodyOf(Post("/sim/v1/commands", R"({"id":"p1","command":"d"})")),
              "{\"number\":2,\"tag\":\"t2\"}\n");
    EXPECT_EQ(Kept("commands"),
              R"([{"command":"c","isFile":true,"number":1,"state":"queued","succeeded":null,)"
              R"("tag":"mine"},)"
              R"({"command":"d","isFile":false,"number":2,"state":"queued","succeeded":null,)"
              R"("tag":"t2"}])");
}

TEST_F(Control, PlansAndCancelsShutdowns) {
    EXPECT_EQ(BodyOf(Post("/sim/v1/shutdown", R"({"id":"p1","inSeconds":100})")), done);
    const Json::Value shutdown = FirstPayload(server.Port())["shutdown"];
    EXPECT_EQ(JsonText(shutdown["pending"]), "false");
    EXPECT_EQ(JsonText(shutdown["told"]), "false");
    EXPECT_GT(shutdown["inSeconds"].asDouble(), 0);
    EXPECT_LE(shutdown["inSeconds"].asDouble(), 100);
    EXPECT_EQ(BodyOf(Post("/sim/v1/shutdown", R"({"id":"p1","cancel":true})")), done);
    EXPECT_EQ(Kept("shutdown"), "null");
}

TEST_F(Control, SetsSwitchesAndForgetsPayloads) {
    EXPECT_EQ(BodyOf(Post("/sim/v1/switches", R"({"id":"p1","on":true})")), done);
    EXPECT_EQ(BodyOf(Post("/sim/v1/switches", R"({"id":"p1","name":"S 2","on":false})")), done);
    EXPECT_EQ(Kept("mainSwitch"), "true");
    EXPECT_EQ(Kept("switches"), R"({"S 2":false})");
    EXPECT_EQ(BodyOf(Post("/sim/v1/forget", R"({"id":"p1"})")), done);
    EXPECT_EQ(JsonText(State(server.Port())["payloads"]), "[]");
    EXPECT_EQ(Post("/sim/v1/forget", R"({"id":"p1"})"),
              ReplyText("404 Not Found", "text/plain", "There is no such payload\n"));
}

TEST_F(Control, OrdersTheVehicle) {
    Post("/sim/v1/vehicle", R"({"latitude":10,"longitude":20,"speedMetresPerSecond":0})");
    Json::Value vehicle = State(server.Port())["vehicle"];
    EXPECT_NEAR(vehicle["latitude"].asDouble(), 10, 1e-9);
    EXPECT_NEAR(vehicle["longitude"].asDouble(), 20, 1e-9);
    EXPECT_EQ(JsonText(vehicle["error"]), "null");
    Post("/sim/v1/vehicle", R"({"error":"no satellites"})");
    EXPECT_EQ(JsonText(State(server.Port())["vehicle"]["error"]), "\"no satellites\"");
    const Json::Value poll =
        ParsedJson(BodyOf(Get("/xp?op=poll&id=p1&format=2&gps=true&maxcommands=0&timeout=0")));
    EXPECT_EQ(JsonText(poll["gps"]["error"]), "\"no satellites\"");
    Post("/sim/v1/vehicle", R"({"error":null,"waypoints":[[1,2],[1.5,2.5]]})");
    vehicle = State(server.Port())["vehicle"];
    EXPECT_EQ(JsonText(vehicle["error"]), "null");
    EXPECT_NEAR(vehicle["latitude"].asDouble(), 1, 1e-9);
    EXPECT_EQ(vehicle["track"].size(), 2U);
}

TEST_F(Control, RunsTheClock) {
    EXPECT_EQ(ParsedJson(BodyOf(Post("/sim/v1/clock", R"({"speed":0})")))["speed"].asDouble(), 0);
    const double before = State(server.Port())["clock"]["unixSeconds"].asDouble();
    Post("/sim/v1/clock", R"({"stepSeconds":3600})");
    EXPECT_EQ(State(server.Port())["clock"]["unixSeconds"].asDouble(), before + 3600);
}

TEST_F(Control, AnsweredScriptsFollowTheirRule) {
    Post("/sim/v1/scripts", R"({"match":"df *","output":"{id}: {command} is full\n"})");
    EXPECT_EQ(BodyOf(Get("/xp?op=script&id=p1&cmd=df%20-h")), "p1: df -h is full\n");
    EXPECT_EQ(BodyOf(Get("/xp?op=script&id=p1&cmd=ls")),
              "simulated output of 'ls'\nnothing was run\n");
    EXPECT_EQ(
        Kept("scripts"),
        R"([{"command":"df -h","exitStatus":null,"killed":null,"output":"p1: df -h is full\n"},)"
        R"({"command":"ls","exitStatus":null,"killed":null,)"
        R"("output":"simulated output of 'ls'\nnothing was run\n"}])");
}

TEST_F(Control, ArmsAFaultForTheNextReplyOfAnOperation) {
    const Json::Value armed =
        ParsedJson(BodyOf(Post("/sim/v1/faults", R"({"fault":"status-404","operation":"off"})")));
    EXPECT_EQ(JsonText(armed), R"({"count":1,"fault":"status-404","hits":0,"number":1,)"
                               R"("operation":"off","probability":null})");
    EXPECT_EQ(Get("/xp?op=pwr&id=p1&cmd=on"), okReply);
    EXPECT_EQ(StatusLine(Get("/xp?op=off&id=p1")), "HTTP/1.1 404 Not Found");
    EXPECT_EQ(Get("/xp?op=off&id=p1"), okReply);
    const Json::Value traffic = ParsedJson(BodyOf(Get("/sim/v1/traffic")))["exchanges"];
    EXPECT_EQ(JsonText(traffic[0]["fault"]), "null");
    EXPECT_EQ(JsonText(traffic[1]["fault"]), "\"status-404\"");
    EXPECT_EQ(JsonText(State(server.Port())["faults"]), "[]");
}

TEST_F(Control, DisarmsFaults) {
    for (int i = 0; i < 3; ++i) {
        Post("/sim/v1/faults", R"({"fault":"no-reply","probability":1})");
    }
    const auto request = [](const std::string& method, const std::string& target) {
        return method + " " + target + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
    };
    EXPECT_EQ(BodyOf(Exchange(server.Port(), request("DELETE", "/sim/v1/faults?number=2"))), done);
    EXPECT_EQ(BodyOf(Exchange(server.Port(), request("DELETE", "/sim/v1/faults?number=2"))),
              "There is no armed fault of this number\n");
    EXPECT_EQ(State(server.Port())["faults"].size(), 2U);
    EXPECT_EQ(BodyOf(Exchange(server.Port(), request("DELETE", "/sim/v1/faults"))), done);
    EXPECT_EQ(Get("/xp?op=off&id=p1"), okReply);
    EXPECT_EQ(StatusLine(Exchange(server.Port(), request("DELETE", "/sim/v1/state"))),
              "HTTP/1.1 405 Method Not Allowed");
}

TEST_F(Control, RefusesBadJson) {
    const std::pair<std::string, std::string> commands[] = {
        {"", "The body is not valid JSON"},
        {"{", "The body is not valid JSON"},
        {"{} x", "The body is not valid JSON"},
        {"[1]", "The body is not a JSON object"},
        {"{}", "Member 'id' must be a string"},
        {R"({"id":"p","command":"c","tga":"t"})", "Member 'tga' is not known here"},
        {R"({"id":7,"tag":"t","command":"c"})", "Member 'id' must be a string"},
        {R"({"id":"","tag":"t","command":"c"})", "Member 'id' is empty"},
        {R"({"id":"p","tag":"t","command":null})", "Member 'command' must be a string"},
        {R"({"id":"p","tag":"t","command":"c","isFile":1})",
         "Member 'isFile' must be true or false"},
        {R"({"id":"p","tag":"'\"","command":"c"})", "The tag contains both kinds of quotes"},
    };
    for (const auto& [body, line] : commands) {
        EXPECT_EQ(Post("/sim/v1/commands", body),
                  ReplyText("400 Bad Request", "text/plain", line + "\n"))
            << body;
    }
    for (const char* const seconds : {"-1", "\"5\"", "true", "null", "1e300"}) {
        EXPECT_EQ(BodyOf(Post("/sim/v1/shutdown",
                              std::string(R"({"id":"p","inSeconds":)") + seconds + "}")),
                  "Member 'inSeconds' must be a number from 0.0 to 1000000000.0\n")
            << seconds;
    }
    EXPECT_EQ(StatusLine(Post("/sim/v1/commands", std::string(1024 * 1024 + 1, ' '))),
              "HTTP/1.1 413 Request Entity Too Large");
    EXPECT_EQ(StatusLine(Post("/sim/v1/commands", std::string(100000, '['))),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(State(server.Port())["payloads"].size(), 0U);
}

TEST_F(Control, RefusesUnknownTargetsAndMethods) {
    EXPECT_EQ(Get("/sim/v1/nothing"),
              ReplyText("404 Not Found", "text/plain", "Nothing is steered here\n"));
    EXPECT_EQ(StatusLine(Get("/sim/v1/commands")), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_EQ(StatusLine(Post("/sim/v1/state", "{}")), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_EQ(StatusLine(Post("/sim/v1/files/x", "{}")), "HTTP/1.1 405 Method Not Allowed");
}

TEST_F(Control, RefusesOtherSitesPages) {
    const auto get = [&](const std::string& headers) {
        return BodyOf(Exchange(server.Port(), "GET /sim/v1/registration?id=x HTTP/1.1\r\n" +
                                                  headers + "Connection: close\r\n\r\n"));
    };
    const char own[] = "This payload is not registered\n";
    EXPECT_EQ(get("Host: localhost:8080\r\n"), own);
    EXPECT_EQ(get("Host: [::1]:8080\r\n"), own);
    EXPECT_EQ(get("Host: 127.0.0.1:1\r\nOrigin: http://127.0.0.1:1\r\n"), own);
    const char foreign[] = "Requests from another site's page are refused\n";
    EXPECT_EQ(get("Host: 127.0.0.1:1\r\nOrigin: http://127.0.0.1:2\r\n"), foreign);
    EXPECT_EQ(get("Host: localhost\r\nOrigin: null\r\n"), foreign);
    EXPECT_EQ(get("Host: localhost\r\nSec-Fetch-Site: cross-site\r\n"), foreign);
    EXPECT_EQ(get("Host: localhost\r\nSec-Fetch-Site: same-site\r\n"), foreign);
    EXPECT_EQ(get("Host: localhost\r\nSec-Fetch-Site: same-origin\r\n"), own);
    EXPECT_EQ(get("Host: localhost\r\nSec-Fetch-Site: none\r\n"), own);
    EXPECT_EQ(get("Host: rebound.example\r\nOrigin: http://rebound.example\r\n"),
              "Use the server's address, or localhost, as its name\n");
}

TEST_F(Control, OtherSitesPagesAreNoPayloads) {
    const auto off = [&](const std::string& header) {
        return Exchange(server.Port(), "GET /xp?op=off&id=p1 HTTP/1.1\r\nHost: v\r\n" + header +
                                           "Connection: close\r\n\r\n");
    };
    for (const char* const header :
         {"Sec-Fetch-Site: cross-site\r\n", "Sec-Fetch-Site: same-site\r\n", "Origin: http://w\r\n",
          "Origin: null\r\n"}) {
        EXPECT_EQ(off(header), ReplyText("403 Forbidden", "text/plain",
                                         "Requests from another site's page are refused\n"))
            << header;
    }
    EXPECT_EQ(State(server.Port())["payloads"].size(), 0U);
    EXPECT_EQ(off("Sec-Fetch-Site: none\r\n"), okReply);
    EXPECT_EQ(off("Origin: http://v\r\n"), okReply);
}

TEST_F(Control, TrafficShowsThePayloadsExchangesInOrderWithTheirExactBytes) {
    const std::string request = GetText("/xp?op=off&id=p1");
    Exchange(server.Port(), request);
    Get("/sim/v1/state");
    const std::string upload = UploadText("/xp?op=nothing", "f", "n");
    const std::string reply = Exchange(server.Port(), upload);
    const Json::Value exchanges = ParsedJson(BodyOf(Get("/sim/v1/traffic")))["exchanges"];
    ASSERT_EQ(exchanges.size(), 2U);
    const Json::Value& first = exchanges[0];
    EXPECT_EQ(first["time"].asString().size(), 24U);
    EXPECT_EQ(first["peer"].asString().rfind("127.0.0.1:", 0), 0U);
    EXPECT_EQ(first["target"].asString(), "/xp?op=off&id=p1");
    EXPECT_EQ(first["operation"].asString(), "off");
    EXPECT_EQ(JsonText(first["ids"]), "[\"p1\"]");
    EXPECT_EQ(first["requestBytes"].asUInt(), request.size());
    const Json::Value& second = exchanges[1];
    EXPECT_EQ(second["number"].asUInt(), 2U);
    EXPECT_EQ(second["method"].asString(), "POST");
    EXPECT_EQ(second["status"].asInt(), 404);
    EXPECT_EQ(second["requestBytes"].asUInt(), upload.size());
    EXPECT_EQ(BodyOf(Get("/sim/v1/traffic/1/request")), request);
    EXPECT_EQ(BodyOf(Get("/sim/v1/traffic/2/request")), upload);
    EXPECT_EQ(BodyOf(BodyOf(Get("/sim/v1/traffic/2/reply"))), BodyOf(reply));
    EXPECT_EQ(BodyOf(Get("/sim/v1/traffic/3/reply")), "No such exchange is kept\n");
}

TEST_F(Control, TrafficShowsWhatWasNoRequestAtAll) {
    Exchange(server.Port(), "SSH-2.0-client\r\n\r\n");
    while (world.traffic.Entries().empty()) {
    }
    const Json::Value exchange = ParsedJson(BodyOf(Get("/sim/v1/traffic")))["exchanges"][0];
    EXPECT_EQ(JsonText(exchange["flags"]), "[\"not an HTTP request\"]");
    EXPECT_EQ(BodyOf(Get("/sim/v1/traffic/1/request")), "SSH-2.0-client\r\n\r\n");
}

TEST_F(Control, FilesAreFetchedByTheirKeptNameOnly) {
    WriteFile(folder.path + "/secret", "secret");
    Upload("/xp?op=upload&id=p1", "", "empty.txt");
    EXPECT_EQ(StatusLine(Get("/sim/v1/files/empty.txt")), "HTTP/1.1 200 OK");
    EXPECT_EQ(BodyOf(Get("/sim/v1/files/empty.txt")), "");
    for (const char* const name : {"", "../secret", "..%2Fsecret", "%2e%2e/secret", "missing"}) {
        EXPECT_EQ(Get(std::string("/sim/v1/files/") + name),
                  ReplyText("404 Not Found", "text/plain", "No such file is kept\n"))
            << name;
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
