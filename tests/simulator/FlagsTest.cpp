// What the traffic says of requests over real connections that are not as the client sends them.

#include "support/Wire.h"

#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

using Flags = std::vector<std::string>;

const char formType[] = "multipart/form-data; boundary=BOUNDARY";

/// A part of a form; `header` stands behind its name.
std::string Part(const std::string& name, const std::string& header, const std::string& content) {
    return "--BOUNDARY\r\nContent-Disposition: form-data; name=\"" + name + "\"" + header +
           "\r\n\r\n" + content + "\r\n";
}

std::string FilePart(const std::string& content, const std::string& fileName = "n") {
    return Part("file", "; filename=\"" + fileName + "\"\r\nContent-Type: application/octet-stream",
                content);
}

const std::string namePart = Part("filename", "", "/tmp/n");
const std::string submitPart = Part("submit", "", "send");
const std::string end = "--BOUNDARY--\r\n";
const std::string text("text\0", 5);

class FlagsTest : public ServerTest {
protected:
    /// The flags of an exchange in which this is all that is sent.
    Flags Sent(const std::string& request) const {
        Connection connection(server.Port());
        connection.Send(request);
        connection.EndSending();
        connection.ReadAll();
        AwaitEnd();
        return world.traffic.Entries().back().flags;
    }

    void AwaitEnd() const {
        while (world.traffic.Entries().empty() || world.traffic.Entries().back().open) {
            std::this_thread::yield();
        }
    }

    Flags SentForm(const std::string& form, const std::string& parameters = "reply&id=P1&tag=t") {
        return Sent("POST /xp?op=" + parameters +
                    " HTTP/1.1\r\nHost: v\r\nAccept: */*\r\nContent-Length: " +
                    std::to_string(form.size()) + "\r\nContent-Type: " + formType + "\r\n\r\n" +
                    form);
    }
};

TEST_F(FlagsTest, AGoodFormHasNone) {
    EXPECT_EQ(SentForm(FilePart(text) + namePart + submitPart + end), Flags{});
    EXPECT_EQ(SentForm(FilePart("as it is") + namePart + submitPart + end, "jar&id=P1"), Flags{});
}

TEST_F(FlagsTest, EachMalformedFormIsToldByItsOwn) {
    const std::pair<std::string, std::string> cases[] = {
        {FilePart("text") + namePart + submitPart, "the text does not end in a zero byte"},
        {FilePart("") + namePart + submitPart, "the text does not end in a zero byte"},
        {FilePart(text) + submitPart + namePart, "form part 'filename' is out of order"},
        {namePart + FilePart(text) + submitPart, "form part 'file' is out of order"},
        {FilePart(text) + namePart + submitPart + Part("more", "", "x"),
         "form part 'more' is unknown"},
        {FilePart(text) + namePart, "Form part 'submit' is missing"},
        {FilePart(text) + submitPart, "Form part 'filename' is missing"},
        {namePart + submitPart, "Form part 'file' is missing"},
        {FilePart(text) + namePart + namePart + submitPart, "A form part comes twice"},
        {FilePart(text) + namePart + Part("submit", "", "Send"),
         "form part 'submit' is not 'send'"},
        {FilePart(text, "m") + namePart + submitPart,
         "the header of form part 'file' does not name what 'filename' ends in"},
        {FilePart(text, "/tmp/n") + namePart + submitPart,
         "the header of form part 'file' does not name what 'filename' ends in"},
        {Part("file", "; filename=\"n\"", text) + namePart + submitPart,
         "form part 'file' has other header lines"},
        {FilePart(text) + Part("filename", "\r\nContent-Type: text/plain", "/tmp/n") + submitPart,
         "form part 'filename' has other header lines"},
    };
    for (const auto& [form, flag] : cases) {
        EXPECT_EQ(SentForm(form + end), Flags{flag}) << form;
    }
    EXPECT_EQ(SentForm(FilePart(text) + namePart + submitPart),
              Flags{"The form ends before its last boundary"});
}

TEST_F(FlagsTest, ContentsThatTheClientDoesNotMakeAreTold) {
    const auto flags = [&](const std::string& parameters, const std::string& content) {
        return SentForm(FilePart(content + '\0') + namePart + submitPart + end, parameters);
    };
    EXPECT_EQ(flags("rawpacket&id=P1", "A\\x0F\\\\"), Flags{});
    EXPECT_EQ(flags("rawpacket&id=P1", "\\x0f"),
              Flags{"the packet is not escaped as the client does it"});
    EXPECT_EQ(flags("rawpacket&id=P1", "\\x41"),
              Flags{"the packet is not escaped as the client does it"});
    EXPECT_EQ(flags("rawpacket&id=P1", "\\n"),
              Flags{"the packet is not escaped as the client does it"});
    EXPECT_EQ(flags("meta&id=P1", "\"tag\":\"x\""), Flags{});
    EXPECT_EQ(flags("meta&id=P1", " {\"tag\":\"x\"}\n"),
              Flags{"the registration document has its outer braces"});
}

TEST_F(FlagsTest, HeadsAreTold) {
    const std::string lines = "Host: v\r\nAccept: */*\r\n";
    EXPECT_EQ(Sent("GET /xp?op=off&id=P1 HTTP/1.1\r\n" + lines + "\r\n"), Flags{});
    EXPECT_EQ(Sent("GET /xp?op=off&id=P1 HTTP/1.0\r\n" + lines + "\r\n"),
              Flags{"the version is not HTTP/1.1"});
    EXPECT_EQ(Sent("GET /xp?op=off&id=P1 HTTP/1.1\r\nAccept: */*\r\n\r\n"),
              Flags{"header 'Host' is missing"});
    EXPECT_EQ(Sent("GET /xp?op=off&id=P1 HTTP/1.1\r\n" + lines + "User-Agent: a\r\n\r\n"),
              Flags{"header 'User-Agent' is not sent by the client"});
    EXPECT_EQ(Sent("GET /xp?op=off&id=%a HTTP/1.1\r\n" + lines + "\r\n"),
              Flags{"parameter 'id' has a broken escape"});
    EXPECT_EQ(world.traffic.Entries().back().status, 400);
}

TEST_F(FlagsTest, ASecondRequestOnAConnectionIsTold) {
    const std::string request = "GET /xp?op=off&id=P1 HTTP/1.1\r\nHost: v\r\nAccept: */*\r\n\r\n";
    EXPECT_EQ(Sent(request + request), Flags{"the connection was used before"});
    EXPECT_EQ(world.traffic.Entries().front().flags, Flags{});
}

TEST_F(FlagsTest, ReachTheControlInterfaceAndEachIsThereOnce) {
    SentForm(FilePart("no zero byte", "m") + namePart + submitPart + end, "reply&id=P1&tag=a+b");
    EXPECT_EQ(JsonText(ParsedJson(BodyOf(Get("/sim/v1/traffic")))["exchanges"][0]["flags"]),
              R"(["parameter 'tag' has a '+'",)"
              R"("the header of form part 'file' does not name what 'filename' ends in",)"
              R"("the text does not end in a zero byte"])");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
