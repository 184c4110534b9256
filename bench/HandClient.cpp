#include "HandClient.h"

#include "HandJson.h"

#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

std::string HandClient::RunScript(const std::string& command) {
    return Get("/xp?op=script&id=P1&cmd=" + command);
}

std::size_t HandClient::Poll(const std::string& id) {
    const std::string body = Get("/xp?op=poll&id=" + id +
                                 "&format=2&gps=true&shutdown=true&maxcommands=10000&timeout=1000");
    return ReadPoll(body).size();
}

void HandClient::UploadContent(const std::string& content) {
    PostContent("/xp?op=reply&id=" + IdOf(content.size()) + "&tag=t1", content);
}

void HandClient::UploadFile(const std::string& fileName, std::size_t size) {
    PostFile("/xp?op=upload&id=" + IdOf(size), fileName);
}

void ExpectStatusOK(long status) {
    if (status != 200) {
        throw std::runtime_error("the server answered with status " + std::to_string(status));
    }
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
