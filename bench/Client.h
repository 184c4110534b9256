#pragma once

#include <memory>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

/// One way to talk to the payload server. As with the library, each call makes a connection of its
/// own, may be made by several threads at once, and throws when the reply is not OK.
class Client {
public:
    Client() = default;
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    virtual ~Client() = default;

    /// A GET; the reply's body.
    virtual std::string RunScript(const std::string& command) = 0;
    /// The number of commands in the reply, all of which have been made records.
    virtual std::size_t Poll(const std::string& id) = 0;
    virtual void UploadContent(const std::string& content) = 0;
    virtual void UploadFile(const std::string& fileName, std::size_t size) = 0;

protected:
    /// The server takes an upload for whole only when it has at least the bytes that its payload's
    /// name tells.
    static std::string IdOf(std::size_t size) {
        return "P" + std::to_string(size);
    }
};

/// The client of that name for a server (host:port); throws std::invalid_argument for no such name.
///
///   - library: this library
///   - canary: the same with needless streams, which the guard must notice
///   - bare: the least hand-written program over libcurl that does the same
///   - curlpp, poco, httplib, beast: as those libraries' own documentation has it
///
/// All but the library send content from memory, as anyone would who is not bound to a file:
///
///   - file: as bare, but with the temporary file that the upload's format names
///   - contract: as bare, but with that file made by the framework's types
std::unique_ptr<Client> MakeClient(const std::string& name, const std::string& server);

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
