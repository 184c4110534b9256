#include "Clients.h"
#include "HandClient.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/version.hpp>
#include <boost/filesystem/operations.hpp>
#include <fstream>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;

const char boundary[] = "------------------------bench";

std::string Disposition(const std::string& rest) {
    return std::string("--") + boundary + "\r\nContent-Disposition: form-data; name=" + rest;
}

/// What of a form is before the file's content, and what is behind it: Beast leaves that to its
/// user.
std::string FormHead() {
    return Disposition("\"file\"; filename=\"content\"\r\nContent-Type: "
                       "application/octet-stream\r\n\r\n");
}

std::string FormTail(const std::string& fileName) {
    return "\r\n" + Disposition("\"filename\"\r\n\r\n" + fileName + "\r\n") +
           Disposition("\"submit\"\r\n\r\nsend\r\n") + "--" + boundary + "--\r\n";
}

class Connection {
public:
    explicit Connection(const std::string& server) : stream(context) {
        const std::size_t colon = server.find(':');
        asio::ip::tcp::resolver resolver(context);
        stream.connect(resolver.resolve(server.substr(0, colon), server.substr(colon + 1)));
    }

    std::string Receive() {
        beast::flat_buffer buffer;
        http::response_parser<http::string_body> parser;
        parser.body_limit(boost::none);
        http::read(stream, buffer, parser);
        beast::error_code ignored;
        stream.socket().shutdown(asio::ip::tcp::socket::shutdown_both, ignored);
        ExpectStatusOK(static_cast<long>(parser.get().result_int()));
        return std::move(parser.get().body());
    }

private:
    asio::io_context context;

public:
    beast::tcp_stream stream;
};

template <typename Body>
http::request<Body> Request(http::verb verb, const std::string& target, const std::string& server) {
    http::request<Body> request(verb, target, 11);
    request.set(http::field::host, server);
    request.set(http::field::user_agent, BOOST_BEAST_VERSION_STRING);
    if (verb == http::verb::post) {
        request.set(http::field::content_type,
                    std::string("multipart/form-data; boundary=") + boundary);
    }
    return request;
}

class BeastClient : public HandClient {
public:
    explicit BeastClient(const std::string& address) : server(address) {}

private:
    std::string Get(const std::string& target) override {
        const auto request = Request<http::empty_body>(http::verb::get, target, server);
        Connection connection(server);
        http::write(connection.stream, request);
        return connection.Receive();
    }

    void PostContent(const std::string& target, const std::string& content) override {
        auto request = Request<http::string_body>(http::verb::post, target, server);
        request.body() = FormHead() + content + FormTail("content");
        request.prepare_payload();
        Connection connection(server);
        http::write(connection.stream, request);
        connection.Receive();
    }

    void PostFile(const std::string& target, const std::string& fileName) override {
        auto request = Request<http::buffer_body>(http::verb::post, target, server);
        const std::string head = FormHead();
        const std::string tail = FormTail(fileName);
        request.content_length(head.size() + boost::filesystem::file_size(fileName) + tail.size());
        request.body().data = nullptr;
        request.body().more = true;
        Connection connection(server);
        http::request_serializer<http::buffer_body> serializer(request);
        http::write_header(connection.stream, serializer);
        const auto send = [&](const char* data, std::size_t size, bool more) {
            request.body().data = const_cast<char*>(data);
            request.body().size = size;
            request.body().more = more;
            beast::error_code code;
            http::write(connection.stream, serializer, code);
            if (code && code != http::error::need_buffer) {
                throw beast::system_error(code);
            }
        };
        send(head.data(), head.size(), true);
        std::ifstream file(fileName, std::ios::binary);
        std::vector<char> buffer(65536);
        while (file.read(buffer.data(), static_cast<std::streamsize>(buffer.size())),
               file.gcount() > 0) {
            send(buffer.data(), static_cast<std::size_t>(file.gcount()), true);
        }
        send(tail.data(), tail.size(), false);
        connection.Receive();
    }

    const std::string server;
};

} // namespace

std::unique_ptr<Client> MakeBeastClient(const std::string& server) {
    return std::make_unique<BeastClient>(server);
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
