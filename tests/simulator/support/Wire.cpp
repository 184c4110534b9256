#include "support/Wire.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <json/reader.h>
#include <json/writer.h>
#include <sstream>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

std::string NewFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tavo-sim-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no folder for the test");
    }
    return name;
}

std::string WithoutDate(std::string reply) {
    const std::size_t begin = reply.find("Date: ");
    if (begin < reply.find("\r\n\r\n")) {
        reply.erase(begin, reply.find("\r\n", begin) + 2 - begin);
    }
    return reply;
}

} // namespace

TempFolder::TempFolder() : path(NewFolder()) {}

TempFolder::~TempFolder() {
    std::filesystem::remove_all(path);
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::vector<std::string> Entries(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string GetText(const std::string& target) {
    return "GET " + target + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
}

std::string PostText(const std::string& target, const std::string& type, const std::string& body) {
    return "POST " + target +
           " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string FormText(const std::string& file, const std::string& fileName) {
    return "--BOUNDARY\r\nContent-Disposition: form-data; name=\"file\"; filename=\"f\"\r\n"
           "Content-Type: application/octet-stream\r\n\r\n" +
           file + "\r\n--BOUNDARY\r\nContent-Disposition: form-data; name=\"filename\"\r\n\r\n" +
           fileName +
           "\r\n--BOUNDARY\r\nContent-Disposition: form-data; name=\"submit\"\r\n\r\nsend"
           "\r\n--BOUNDARY--\r\n";
}

std::string UploadText(const std::string& target, const std::string& file,
                       const std::string& fileName) {
    return PostText(target, "multipart/form-data; boundary=BOUNDARY", FormText(file, fileName));
}

Connection::Connection(std::uint16_t port) : socket(Poco::Net::SocketAddress("127.0.0.1", port)) {}

void Connection::Send(const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        sent += static_cast<std::size_t>(
            socket.sendBytes(bytes.data() + sent, static_cast<int>(bytes.size() - sent)));
    }
}

std::string Connection::ReadAll() {
    std::string reply;
    std::vector<char> buffer(65536);
    for (;;) {
        const int count = socket.receiveBytes(buffer.data(), static_cast<int>(buffer.size()));
        if (count <= 0) {
            return WithoutDate(reply);
        }
        reply.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

std::string Connection::ReadUntil(const std::string& end) {
    std::string text;
    for (char next = '\0'; socket.receiveBytes(&next, 1) > 0;) {
        text += next;
        if (text.size() >= end.size() &&
            text.compare(text.size() - end.size(), end.size(), end) == 0) {
            break;
        }
    }
    return text;
}

void Connection::EndSending() {
    socket.shutdownSend();
}

bool Connection::IsSilent() {
    constexpr Poco::Timespan::TimeDiff tenth = 100000;
    return !socket.poll(Poco::Timespan(tenth), Poco::Net::Socket::SELECT_READ);
}

void Connection::Close() {
    socket.close();
}

std::string Exchange(std::uint16_t port, const std::string& request) {
    Connection connection(port);
    connection.Send(request);
    return connection.ReadAll();
}

std::string StatusLine(const std::string& reply) {
    return reply.substr(0, reply.find("\r\n"));
}

std::string BodyOf(const std::string& reply) {
    const std::size_t end = reply.find("\r\n\r\n");
    return end == std::string::npos ? "" : reply.substr(end + 4);
}

std::string ReplyText(const std::string& status, const std::string& type, const std::string& body) {
    return "HTTP/1.1 " + status + "\r\nConnection: Close\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

Json::Value ParsedJson(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

Json::Value State(std::uint16_t port) {
    return ParsedJson(BodyOf(Exchange(port, GetText("/sim/v1/state"))));
}

Json::Value FirstPayload(std::uint16_t port) {
    return State(port)["payloads"][0];
}

std::string JsonText(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Settings SettingsIn(const std::string& folder) {
    Settings settings;
    settings.dataFolder = folder;
    return settings;
}

void AwaitHeldPolls(std::uint16_t port, std::size_t count) {
    while (State(port)["heldPolls"].asUInt64() != count) {
        std::this_thread::yield();
    }
}

ServerTest::ServerTest() {
    std::signal(SIGPIPE, SIG_IGN);
}

std::string ServerTest::Get(const std::string& target) const {
    return Exchange(server.Port(), GetText(target));
}

std::string ServerTest::Post(const std::string& target, const std::string& body) const {
    return Exchange(server.Port(), PostText(target, "application/json", body));
}

std::string ServerTest::Upload(const std::string& target, const std::string& file,
                               const std::string& fileName) const {
    return Exchange(server.Port(), UploadText(target, file, fileName));
}

std::string ServerTest::Kept(const std::string& member) const {
    return JsonText(FirstPayload(server.Port())[member]);
}

const char okReply[] = "HTTP/1.1 200 OK\r\nConnection: Close\r\nContent-Type: text/plain\r\n"
                       "Content-Length: 2\r\n\r\nOK";

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
