#include "support/Mutations.h"
#include "support/Wire.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

const char chunkedUpload[] =
    "POST /xp?op=upload&id=P1 HTTP/1.1\r\nHost: v\r\nTransfer-Encoding: chunked\r\n"
    "Content-Type: multipart/form-data; boundary=BOUNDARY\r\n\r\n5\r\n--BOU\r\n0\r\n\r\n";

const std::vector<std::string>& GoodRequests() {
    static const std::vector<std::string> requests = {
        GetText("/xp?op=off&id=P1"),
        GetText("/xp?op=pwr&id=P1&sw=pump%202&cmd=on"),
        GetText("/xp?op=script&id=P1&cmd=df%20-h"),
        GetText("/xp?op=metadone&id=P1"),
        GetText("/xp?op=offdelay&id=P1&delay=5&setdefault=0"),
        GetText("/xp?op=poll&id=P1&id=P2&format=2&gps=true&shutdown=true&maxcommands=3&timeout=0"),
        UploadText("/xp?op=reply&id=P1&tag=t&complete=false", std::string("text\0", 5), "/tmp/t"),
        UploadText("/xp?op=rawpacket&id=P1", std::string("A\\x00\\\\\0", 8), "/tmp/t"),
        UploadText("/xp?op=meta&id=P1&hostid=h", std::string("\"tag\":[1,{}]\0", 13), "/tmp/t"),
        UploadText("/xp?op=upload&id=P1&remote=..%2F..%2Fetc%2Fpasswd", "file", "/tmp/../../x"),
        UploadText("/xp?op=jar&id=P1", "jar", "../../../../tmp/escaped"),
        PostText("/sim/v1/commands", "application/json", R"({"id":"P1","command":"c"})"),
        PostText("/sim/v1/vehicle", "application/json", R"({"waypoints":[[57,2],[58,3]]})"),
        PostText("/sim/v1/scripts", "application/json", R"({"match":"d*","output":"{id}"})"),
        GetText("/sim/v1/state"),
        GetText("/sim/v1/traffic?after=1&most=3"),
        GetText("/sim/v1/files/..%2F..%2Fetc%2Fpasswd"),
        chunkedUpload,
    };
    return requests;
}

const char* const insertions[] = {
    "\r\n",
    "\n",
    "\x7f",
    "%00",
    "../",
    "&id=",
    "\xff\xfe",
    "\"",
    "boundary",
    "99999999999",
    "-1",
    "ffffffff\r\n",
    "; filename=\"/etc/x\"",
    "{[",
};

} // namespace

std::size_t Mutations::Below(std::size_t end) {
    return static_cast<std::size_t>(numbers() % end);
}

void Mutations::Mutate(std::string& request) {
    if (request.empty()) {
        return;
    }
    const std::size_t place = Below(request.size());
    const std::size_t count = 1 + Below(8);
    switch (Below(6)) {
    case 0:
        request[place] = static_cast<char>(Below(256));
        break;
    case 1:
        request.erase(place, count);
        break;
    case 2:
        request.insert(place, request.substr(Below(request.size()), count * 10));
        break;
    case 3:
        request.insert(place, insertions[Below(std::size(insertions))]);
        break;
    case 4:
        request.insert(place, std::string(Below(20000), static_cast<char>(Below(256))));
        break;
    default:
        request.resize(place + 1);
        break;
    }
}

std::string Mutations::Next() {
    std::string request = GoodRequests()[Below(GoodRequests().size())];
    const std::size_t count = 1 + Below(3);
    for (std::size_t i = 0; i < count; ++i) {
        Mutate(request);
    }
    return request;
}

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
