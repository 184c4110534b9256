#pragma once

#include "model/World.h"
#include "wire/Server.h"

#include <Poco/Net/StreamSocket.h>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <json/value.h>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// A folder of the test's own, removed with the object.
class TempFolder {
public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    const std::string path;
};

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& content);
/// The names of a folder's entries, sorted.
std::vector<std::string> Entries(const std::string& folder);

/// Requests that ask for the connection to be closed behind the reply.
std::string GetText(const std::string& target);
std::string PostText(const std::string& target, const std::string& type, const std::string& body);
/// The form of an upload as the client sends it, with the boundary "BOUNDARY".
std::string FormText(const std::string& file, const std::string& fileName);
std::string UploadText(const std::string& target, const std::string& file,
                       const std::string& fileName);

/// One connection to a server on the loopback.
class Connection {
public:
    explicit Connection(std::uint16_t port);

    void Send(const std::string& bytes);
    /// Everything up to the end of the connection, without the header line "Date".
    std::string ReadAll();
    /// What comes up to this text, inclusive; less when the connection ends before.
    std::string ReadUntil(const std::string& end);
    /// Says that nothing more is sent.
    void EndSending();
    /// Whether nothing comes for a tenth of a second.
    bool IsSilent();
    void Close();

private:
    Poco::Net::StreamSocket socket;
};

/// Sends a request and returns the whole reply, without the header line "Date".
std::string Exchange(std::uint16_t port, const std::string& request);
std::string StatusLine(const std::string& reply);
std::string BodyOf(const std::string& reply);
/// A whole reply on a connection that is closed behind it, without the header line "Date".
std::string ReplyText(const std::string& status, const std::string& type, const std::string& body);
Json::Value ParsedJson(const std::string& text);

/// The server's state, and the first payload of it.
Json::Value State(std::uint16_t port);
Json::Value FirstPayload(std::uint16_t port);
/// A value as JSON on one line.
std::string JsonText(const Json::Value& value);
/// Settings with a folder of their own and nothing else out of the ordinary.
Settings SettingsIn(const std::string& folder);
/// Returns when the server holds this many polls; the test's watchdog limits the wait.
void AwaitHeldPolls(std::uint16_t port, std::size_t count);

/// A test with a running server in its own process.
class ServerTest : public ::testing::Test {
protected:
    ServerTest();

    std::string Get(const std::string& target) const;
    std::string Post(const std::string& target, const std::string& body) const;
    std::string Upload(const std::string& target, const std::string& file,
                       const std::string& fileName) const;
    /// What the server says of the first payload under this member, as JSON.
    std::string Kept(const std::string& member) const;

    const TempFolder folder;
    World world{SettingsIn(folder.path + "/data")};
    Server server{world, "127.0.0.1", 0, nullptr};
};

extern const char okReply[];

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
