#include "Clients.h"
#include "HandClient.h"

#include <fstream>
#include <httplib.h>
#include <stdexcept>
#include <utility>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

std::string BodyOf(httplib::Result result) {
    if (!result) {
        throw std::runtime_error(httplib::to_string(result.error()));
    }
    ExpectStatusOK(result->status);
    return std::move(result->body);
}

class HttplibClient : public HandClient {
public:
    explicit HttplibClient(const std::string& address) : server("http://" + address) {}

private:
    std::string Get(const std::string& target) override {
        httplib::Client client(server);
        return BodyOf(client.Get(target));
    }
    void PostContent(const std::string& target, const std::string& content) override {
        httplib::Client client(server);
        BodyOf(client.Post(target, {{"file", content, "content", "application/octet-stream"},
                                    {"filename", "content", "", ""},
                                    {"submit", "send", "", ""}}));
    }
    void PostFile(const std::string& target, const std::string& fileName) override {
        std::ifstream file(fileName, std::ios::binary);
        if (!file) {
            throw std::runtime_error("cannot open " + fileName);
        }
        const auto read = [&file](std::size_t, httplib::DataSink& sink) {
            char buffer[65536];
            file.read(buffer, sizeof buffer);
            sink.os.write(buffer, file.gcount());
            if (!file) {
                sink.done();
            }
            return true;
        };
        const httplib::MultipartFormDataItems texts = {{"filename", fileName, "", ""},
                                                       {"submit", "send", "", ""}};
        const httplib::MultipartFormDataProviderItems files = {
            {"file", read, "file", "application/octet-stream"}};
        httplib::Client client(server);
        BodyOf(client.Post(target, httplib::Headers(), texts, files));
    }

    const std::string server;
};

} // namespace

std::unique_ptr<Client> MakeHttplibClient(const std::string& server) {
    return std::make_unique<HttplibClient>(server);
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
