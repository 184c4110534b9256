#include "operations/Scrutiny.h"
#include "support/Wire.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

using Flags = std::vector<std::string>;

RequestHead GoodGet(const std::string& target = "/xp?op=off&id=P1") {
    RequestHead head;
    head.method = "GET";
    head.target = target;
    head.version = "HTTP/1.1";
    head.headers = {{"Host", "127.0.0.1:8080"}, {"Accept", "*/*"}};
    return head;
}

RequestHead GoodPost(const std::string& target = "/xp?op=jar&id=P1") {
    RequestHead head = GoodGet(target);
    head.method = "POST";
    head.headers.emplace_back("Content-Length", "441");
    head.headers.emplace_back("Content-Type", "multipart/form-data; boundary=--0a1b");
    return head;
}

RequestHead Without(RequestHead head, const std::string& name) {
    auto& headers = head.headers;
    headers.erase(std::remove_if(headers.begin(), headers.end(),
                                 [&](const auto& header) { return header.first == name; }),
                  headers.end());
    return head;
}

RequestHead With(RequestHead head, const std::string& name, const std::string& value) {
    head = Without(std::move(head), name);
    head.headers.emplace_back(name, value);
    return head;
}

TEST(HeadFlags, AreNoneForWhatTheClientSends) {
    const std::string longest = "/xp?op=poll&id=P1&id=P2&id=P1&format=2&gps=true&shutdown=true&"
                                "maxcommands=10&timeout=60000";
    for (const char* const target :
         {longest.c_str(), "/xp?op=off&id=", "/xp?op=pwr&id=a%20b&sw=%2B&cmd=on",
          "/xp?op=pwr&id=P1&cmd=off", "/xp?op=script&id=P1&cmd=-_.~%25",
          "/xp?op=metadone&id=%FF%00", "/xp?op=offdelay&id=P1&delay=-30&setdefault=0",
          "/xp?op=poll&format=2&timeout=0",
          "/xp?op=poll&id=P1&format=2&gps=true&maxcommands=-3&timeout=1"}) {
        EXPECT_EQ(HeadFlags(GoodGet(target)), Flags{}) << target;
    }
    for (const char* const target :
         {"/xp?op=reply&id=a b+\xff%x&tag=&complete=false&succeeded=false",
          "/xp?op=rawpacket&id=P1", "/xp?op=meta", "/xp?op=meta&hostid=h", "/xp?op=meta&id=P1",
          "/xp?op=upload&id=P1&remote=a%2Fb", "/xp?op=uploadlegacy&id=P1", "/xp?op=jar&id=P1"}) {
        EXPECT_EQ(HeadFlags(GoodPost(target)), Flags{}) << target;
    }
    const RequestHead chunked =
        With(Without(GoodPost(), "Content-Length"), "Transfer-Encoding", "chunked");
    EXPECT_EQ(HeadFlags(chunked), Flags{});
}

TEST(HeadFlags, TellEachMalformedQueryByItsOwn) {
    const std::pair<const char*, const char*> cases[] = {
        {"/xp", "parameter 'op' is missing"},
        {"/xp?", "parameter 'op' is missing"},
        {"/xp?id=P1", "parameter 'op' is missing"},
        {"/xp?op=fly&id=P1", "the operation is unknown"},
        {"/other?op=off&id=P1", "the path is not '/xp'"},
        {"http://h/xp?op=off&id=P1", "the path is not '/xp'"},
        {"/xp/?op=off&id=P1", "the path is not '/xp'"},
        {"/xp?op=jar&id=P1", "the method is not POST"},
        {"/xp?id=P1&op=off", "parameter 'op' is out of order"},
        {"/xp?op=off", "parameter 'id' is missing"},
        {"/xp?op=off&id=P1&id=P1", "parameter 'id' is repeated"},
        {"/xp?op=off&op=off&id=P1", "parameter 'op' is repeated"},
        {"/xp?op=off&id=P1&x=1", "parameter 'x' is unknown"},
        {"/xp?op=off&id=P1&", "parameter '' is unknown"},
        {"/xp?op=off&id=P1&ID=2", "parameter 'ID' is unknown"},
        {"/xp?op=off&%69d=P1&id=P1", "parameter '%69d' is unknown"},
        {"/xp?op=off&id", "parameter 'id' has no value"},
        {"/xp?op=pwr&cmd=on&id=P1", "parameter 'id' is out of order"},
        {"/xp?op=pwr&id=P1&cmd=on&sw=s", "parameter 'sw' is out of order"},
        {"/xp?op=pwr&id=P1&cmd=ON", "parameter 'cmd' has a value that the client never sends"},
        {"/xp?op=off&id=a%2fb", "parameter 'id' has small hexadecimal digits"},
        {"/xp?op=off&id=a+b", "parameter 'id' has a '+'"},
        {"/xp?op=off&id=a/b", "parameter 'id' has an unescaped byte"},
        {"/xp?op=off&id=a\xff", "parameter 'id' has an unescaped byte"},
        {"/xp?op=off&id=a#b", "parameter 'id' has an unescaped byte"},
        {"/xp?op=off&id=a%4", "parameter 'id' has a broken escape"},
        {"/xp?op=off&id=a%", "parameter 'id' has a broken escape"},
        {"/xp?op=off&id=a%G0", "parameter 'id' has a broken escape"},
        {"/xp?op=off&id=%41", "parameter 'id' escapes a byte for nothing"},
        {"/xp?op=offdelay&id=P1&delay=+5&setdefault=0", "parameter 'delay' has a '+'"},
        {"/xp?op=offdelay&id=P1&delay=05&setdefault=0",
         "parameter 'delay' has a value that the client never sends"},
        {"/xp?op=offdelay&id=P1&delay=-0&setdefault=0",
         "parameter 'delay' has a value that the client never sends"},
        {"/xp?op=offdelay&id=P1&delay=&setdefault=0",
         "parameter 'delay' has a value that the client never sends"},
        {"/xp?op=offdelay&id=P1&delay=5&setdefault=1",
         "parameter 'setdefault' has a value that the client never sends"},
        {"/xp?op=offdelay&id=P1&delay=5", "parameter 'setdefault' is missing"},
        {"/xp?op=poll&id=P1&timeout=0", "parameter 'format' is missing"},
        {"/xp?op=poll&id=P1&format=2&gps=false&timeout=0",
         "parameter 'gps' has a value that the client never sends"},
        {"/xp?op=poll&id=P1&format=2&maxcommands=1&timeout=0",
         "parameter 'maxcommands' has a value that the client never sends"},
        {"/xp?op=poll&format=2&id=P1&timeout=0", "parameter 'id' is out of order"},
        {"/xp?op=poll&id=P1&format=2&timeout=0&gps=true", "parameter 'gps' is out of order"},
    };
    for (const auto& [target, flag] : cases) {
        EXPECT_EQ(HeadFlags(GoodGet(target)), Flags{flag}) << target;
    }
    const std::pair<const char*, const char*> posts[] = {
        {"/xp?op=off&id=P1", "the method is not GET"},
        {"/xp?op=reply&id=P1&tag=t&complete=true",
         "parameter 'complete' has a value that the client never sends"},
        {"/xp?op=reply&id=P1&tag=t&succeeded=false&complete=false",
         "parameter 'complete' is out of order"},
        {"/xp?op=upload&id=P1&remote=",
         "parameter 'remote' has a value that the client never sends"},
        {"/xp?op=jar&id=P1&remote=r", "parameter 'remote' is unknown"},
        {"/xp?op=meta&hostid=h&id=P1", "parameter 'id' is out of order"},
    };
    for (const auto& [target, flag] : posts) {
        EXPECT_EQ(HeadFlags(GoodPost(target)), Flags{flag}) << target;
    }
}

TEST(HeadFlags, TellEachMalformedHeaderByItsOwn) {
    RequestHead old = GoodGet();
    old.version = "HTTP/1.0";
    EXPECT_EQ(HeadFlags(old), Flags{"the version is not HTTP/1.1"});
    RequestHead used = GoodGet();
    used.connectionUsed = true;
    EXPECT_EQ(HeadFlags(used), Flags{"the connection was used before"});
    for (const std::string name : {"User-Agent", "Accept-Encoding", "Cookie", "Expect",
                                   "Connection", "Content-Length", "Transfer-Encoding"}) {
        EXPECT_EQ(HeadFlags(With(GoodGet(), name, "5")),
                  Flags{"header '" + name + "' is not sent by the client"});
    }
    EXPECT_EQ(HeadFlags(With(GoodPost(), "Expect", "100-continue")),
              Flags{"header 'Expect' is not sent by the client"});
    for (const std::string name : {"Host", "Accept", "Content-Type", "Content-Length"}) {
        EXPECT_EQ(HeadFlags(Without(GoodPost(), name)), Flags{"header '" + name + "' is missing"});
        RequestHead twice = GoodPost();
        const auto found = std::find_if(twice.headers.begin(), twice.headers.end(),
                                        [&](const auto& header) { return header.first == name; });
        twice.headers.push_back(*found);
        EXPECT_EQ(HeadFlags(twice), Flags{"header '" + name + "' is repeated"});
    }
    EXPECT_EQ(HeadFlags(With(GoodGet(), "Host", "")), Flags{"header 'Host' is empty"});
    EXPECT_EQ(HeadFlags(With(GoodGet(), "Accept", "text/html")),
              Flags{"header 'Accept' is not '*/*'"});
    EXPECT_EQ(HeadFlags(With(GoodPost(), "Content-Type", "text/plain")),
              Flags{"header 'Content-Type' is not that of a form"});
    EXPECT_EQ(HeadFlags(With(Without(GoodPost(), "Content-Length"), "Transfer-Encoding", "gzip")),
              Flags{"header 'Transfer-Encoding' is not 'chunked'"});
}

TEST(HeadFlags, AreFewAndShortWhateverComes) {
    std::string target = "/xp?op=off&id=P1";
    for (int i = 0; i < 1000; ++i) {
        target += "&x" + std::to_string(i) + "=" + "&same=";
    }
    const Flags many = HeadFlags(GoodGet(target));
    EXPECT_EQ(many.size(), 20U);
    EXPECT_EQ(many[0], "parameter 'x0' is unknown");
    EXPECT_EQ(many[1], "parameter 'same' is unknown");
    EXPECT_EQ(many[2], "parameter 'x1' is unknown");
    std::string escaped;
    for (int i = 0; i < 40; ++i) {
        escaped += "\\x0A";
    }
    EXPECT_EQ(HeadFlags(GoodGet("/xp?op=off&id=P1&" + std::string(5000, '\n') + "=")),
              Flags{"parameter '" + escaped + "' is unknown"});
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
