#include "support/Wire.h"

#include <sstream>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class Uploads : public ServerTest {
protected:
    std::string DataFile(const std::string& name) const {
        return ReadFile(folder.path + "/data/" + name);
    }
};

/// Every byte depends on its place, and the size is odd.
std::string Pattern(std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>((i * 31 + i / 251) % 256);
    }
    return bytes;
}

TEST_F(Uploads, FilesAndJarsAreKeptUnchanged) {
    const std::string content = Pattern(1234567);
    EXPECT_EQ(Upload("/xp?op=upload&id=p1", content, "/home/payload/log.bin"), okReply);
    EXPECT_EQ(Upload("/xp?op=uploadlegacy&id=p1&remote=day%2Fone.bin", "zero", "/x"), okReply);
    EXPECT_EQ(Upload("/xp?op=jar&id=p1&remote=ignored", std::string("PK\0", 3), "/opt/code.jar"),
              okReply);
    EXPECT_EQ(DataFile("log.bin"), content);
    EXPECT_EQ(DataFile("day_one.bin"), "zero");
    EXPECT_EQ(DataFile("code.jar"), std::string("PK\0", 3));
    Json::Value files = FirstPayload(server.Port())["files"];
    files[0].removeMember("sha256");
    EXPECT_EQ(JsonText(files),
              R"([{"fileName":"/home/payload/log.bin","name":"log.bin","operation":"upload",)"
              R"("remote":"","size":1234567},)"
              R"({"fileName":"/x","name":"day_one.bin","operation":"uploadlegacy",)"
              R"("remote":"day/one.bin","sha256":)"
              R"("f9194e73f9e9459e3450ea10a179cdf77aafa695beecd3b9344a98d111622243","size":4},)"
              R"({"fileName":"/opt/code.jar","name":"code.jar","operation":"jar","remote":"",)"
              R"("sha256":"6afc01ee1b6ba4fdc00ce53fd0fcb0c751bb515ade6262bbb1bedbb984388d99",)"
              R"("size":3}])");
    EXPECT_EQ(BodyOf(Get("/sim/v1/files/log.bin")), content);
}

TEST_F(Uploads, HostileNamesNeverLeaveTheFolder) {
    const char* const remotes[] = {"..%2F..%2Fx", "%2Fetc%2Fpasswd", "a%00b",      "..", ".",
                                   "%2F",         "..%5C..%5Cx",     ".upload-abc"};
    for (const char* const remote : remotes) {
        EXPECT_EQ(Upload(std::string("/xp?op=upload&id=p1&remote=") + remote, remote, "f"),
                  okReply);
    }
    EXPECT_EQ(Upload("/xp?op=upload&id=p1&remote=" + std::string(5000, 'y'), "long", "f"), okReply);
    for (const std::string& name :
         {std::string("../../x"), std::string(), std::string("a\0b", 3)}) {
        EXPECT_EQ(Upload("/xp?op=jar&id=p1", "named by the form", name), okReply);
    }
    EXPECT_EQ(Entries(folder.path), std::vector<std::string>{"data"});
    EXPECT_EQ(Entries(folder.path + "/data"),
              (std::vector<std::string>{"_upload-abc", "a_b", "a_b-2", "etc_passwd", "unnamed",
                                        "unnamed-2", "unnamed-3", "unnamed-4", "x", "x-2", "x-3",
                                        std::string(120, 'y')}));
    EXPECT_EQ(DataFile("x"), "..%2F..%2Fx");
    EXPECT_EQ(DataFile("x-2"), "..%5C..%5Cx");
}

TEST_F(Uploads, ABrokenUploadLeavesNothing) {
    const std::string type = "multipart/form-data; boundary=BOUNDARY";
    const std::string form = FormText("content", "n");
    EXPECT_EQ(
        Exchange(server.Port(),
                 PostText("/xp?op=upload&id=p1", type, form.substr(0, form.size() / 2))),
        ReplyText("400 Bad Request", "text/plain", "The form ends before its last boundary\n"));
    EXPECT_EQ(
        StatusLine(Exchange(server.Port(), PostText("/xp?op=upload&id=p1", "text/plain", form))),
        "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(Upload("/xp?op=upload", "f", "n"),
              ReplyText("400 Bad Request", "text/plain", "Parameter 'id' is missing\n"));
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
    EXPECT_EQ(State(server.Port())["payloads"].size(), 0U);
}

TEST_F(Uploads, AnUploadCutByHangingUpLeavesNothing) {
    const std::string whole = UploadText("/xp?op=upload&id=p1", Pattern(100001), "n");
    {
        Connection cut(server.Port());
        cut.Send(whole.substr(0, whole.size() / 2));
    }
    while (world.traffic.Entries().empty() || world.traffic.Entries()[0].open) {
        std::this_thread::yield();
    }
    EXPECT_EQ(world.traffic.Entries()[0].status, 400);
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
}

TEST_F(Uploads, ChunkedUploadsAreTaken) {
    const std::string form = FormText("chunked", "c.txt");
    std::ostringstream request;
    request << "POST /xp?op=upload&id=p1 HTTP/1.1\r\nHost: v\r\nConnection: close\r\n"
               "Content-Type: multipart/form-data; boundary=BOUNDARY\r\n"
               "Transfer-Encoding: chunked\r\n\r\n"
            << std::hex << form.size() << "\r\n"
            << form << "\r\n0\r\n\r\n";
    EXPECT_EQ(Exchange(server.Port(), request.str()), okReply);
    EXPECT_EQ(DataFile("c.txt"), "chunked");
}

TEST_F(Uploads, PacketsAreTurnedBackIntoBytes) {
    EXPECT_EQ(Upload("/xp?op=rawpacket&id=p1", std::string("A\\x00\\\\\\xFF\0", 12), "t"), okReply);
    EXPECT_EQ(Upload("/xp?op=rawpacket&id=p1", std::string(1, '\0'), "t"), okReply);
    EXPECT_EQ(
        Kept("packets"),
        R"([{"number":1,"size":4,"text":"A\\x00\\\\\\xFF"},{"number":2,"size":0,"text":""}])");
    EXPECT_EQ(BodyOf(Get("/sim/v1/packets/1")), std::string("A\0\\\xFF", 4));
    EXPECT_EQ(Upload("/xp?op=rawpacket&id=p1", std::string("\\xZZ\0", 5), "t"),
              ReplyText("400 Bad Request", "text/plain",
                        "Two hexadecimal digits are missing at offset 2\n"));
}

/// The commands' numbers, states and outcomes.
std::string Commands(std::uint16_t port) {
    std::string text;
    const Json::Value payload = FirstPayload(port);
    for (const Json::Value& command : payload["commands"]) {
        text += command["number"].asString() + " " + command["state"].asString() + " " +
                JsonText(command["succeeded"]) + "\n";
    }
    return text;
}

TEST_F(Uploads, ARegistrationDocumentHasASize) {
    const std::string document = "\"a\":\"" + std::string(256 * 1024 - 7, 'x') + "\"";
    EXPECT_EQ(Upload("/xp?op=meta&id=p1", document + '\0', "t"), okReply);
    EXPECT_EQ(Upload("/xp?op=meta&id=p2", document + ' ' + '\0', "t"),
              ReplyText("413 Request Entity Too Large", "text/plain",
                        "Form part is larger than 262144 bytes\n"));
    EXPECT_EQ(State(server.Port())["payloads"].size(), 1U);
}

TEST_F(Uploads, TheIdentifierOfAReplyMayBeUnescaped) {
    for (const char* const id : {"a+5%", "a%2B5%25"}) {
        Post("/sim/v1/commands", R"({"id":"a+5%","tag":"t+1","command":"c"})");
        Get("/xp?op=poll&id=a%2B5%25&format=2&timeout=0");
        EXPECT_EQ(Upload(std::string("/xp?op=reply&id=") + id + "&tag=t%2B1",
                         std::string("done\0", 5), "f"),
                  okReply);
    }
    EXPECT_EQ(Commands(server.Port()), "1 answered true\n3 answered true\n");
    EXPECT_EQ(world.traffic.Entries()[1].ids, std::vector<std::string>{"a+5%"});
}

TEST_F(Uploads, RepliesAreRecordedAndSettleTheirCommand) {
    Post("/sim/v1/commands", R"({"id":"p1","tag":"t","command":"c"})");
    Get("/xp?op=poll&id=p1&format=2&timeout=0");
    EXPECT_EQ(Upload("/xp?op=reply&id=p1&tag=t&complete=false", std::string("half\0", 5), "f"),
              okReply);
    EXPECT_EQ(Commands(server.Port()), "1 delivered null\n");
    EXPECT_EQ(Upload("/xp?op=reply&id=p1&tag=t&succeeded=false", std::string("done\0", 5), "f"),
              okReply);
    EXPECT_EQ(Commands(server.Port()), "1 answered false\n");
    EXPECT_EQ(Upload("/xp?op=reply&id=p1&tag=", "\xff", "f"), okReply);
    EXPECT_EQ(Kept("answers"),
              R"([{"command":1,"complete":false,"number":2,"size":4,"succeeded":true,"tag":"t",)"
              R"("text":"half"},)"
              R"({"command":1,"complete":true,"number":3,"size":4,"succeeded":false,"tag":"t",)"
              R"("text":"done"},)"
              R"({"command":0,"complete":true,"number":4,"size":1,"succeeded":true,"tag":"",)"
              R"("text":"\ufffd"}])");
    EXPECT_EQ(BodyOf(Get("/sim/v1/answers/4")), "\xff");
    EXPECT_EQ(BodyOf(Upload("/xp?op=reply&id=p1", "x", "f")), "Parameter 'tag' is missing\n");
}

TEST_F(Uploads, RegistrationsAreKeptWithAllTheirMembers) {
    const std::string members = "\"boardAddress\":65535,\"hardware\":[{\"power\":12,\"tty\":\"\"}],"
                                "\"own\":{\"x\":1.5},\"tag\":\"ctd\"";
    EXPECT_EQ(Upload("/xp?op=meta&id=p1&hostid=h", members + '\0', "t"), okReply);
    EXPECT_EQ(Kept("registration"), "{" + members + "}");
    EXPECT_EQ(BodyOf(Get("/sim/v1/registration?id=p1")), "{" + members + "}\n");
    EXPECT_EQ(Kept("hostId"), "\"h\"");
    EXPECT_EQ(Upload("/xp?op=meta&id=p1", "{\"braces\":\"kept\"}", "t"), okReply);
    EXPECT_EQ(Kept("registration"), "{\"braces\":\"kept\"}");
    EXPECT_EQ(Upload("/xp?op=meta", std::string(1, '\0'), "t"), okReply);
    EXPECT_EQ(Kept("id"), "\"\"");
    EXPECT_EQ(Kept("registration"), "{}");
    EXPECT_EQ(Upload("/xp?op=meta&id=p1", "not json", "t"),
              ReplyText("400 Bad Request", "text/plain",
                        "The registration document is not valid JSON\n"));
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
