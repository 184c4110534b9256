#include "Clients.h"
#include "HandClient.h"

#include <MirrinFramework/TempFile.h>

#include <cerrno>
#include <cstdlib>
#include <curl/curl.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>
#include <utility>

// The upload's layout is that of libcurl's form functions, which are deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

void Check(CURLcode code) {
    if (code != CURLE_OK) {
        throw std::runtime_error(curl_easy_strerror(code));
    }
}

template <typename T>
void Set(CURL* curl, CURLoption option, T value) {
    Check(curl_easy_setopt(curl, option, value));
}

/// The status is asked for in the end; no line is needed for that.
std::size_t PassHeader(char*, std::size_t size, std::size_t count, void*) {
    return size * count;
}

std::size_t KeepBody(char* data, std::size_t size, std::size_t count, void* body) {
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

/// A handle with the options that the library sets, and the one exchange it makes.
class Exchange {
public:
    explicit Exchange(const std::string& url) : curl(curl_easy_init()) {
        if (curl == nullptr) {
            throw std::runtime_error("curl_easy_init() failed");
        }
        Set(curl, CURLOPT_WRITEFUNCTION, &KeepBody);
        Set(curl, CURLOPT_HEADERFUNCTION, &PassHeader);
        Set(curl, CURLOPT_HEADERDATA, &body);
        Set(curl, CURLOPT_WRITEDATA, &body);
        Set(curl, CURLOPT_URL, url.c_str());
        Set(curl, CURLOPT_NOSIGNAL, 1L);
        Set(curl, CURLOPT_CONNECTTIMEOUT, 10L);
        Set(curl, CURLOPT_TIMEOUT, 301L);
        Set(curl, CURLOPT_FTP_RESPONSE_TIMEOUT, 300L);
    }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange() {
        curl_easy_cleanup(curl);
    }

    std::string Perform() {
        Check(curl_easy_perform(curl));
        long status = 0;
        Check(curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status));
        ExpectStatusOK(status);
        return std::move(body);
    }

    CURL* const curl;

private:
    std::string body;
};

/// The form's three parts.
class Form {
public:
    Form() = default;
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;
    ~Form() {
        curl_formfree(first);
        curl_slist_free_all(headers);
    }

    void AddFile(const char* fileName) {
        Check(curl_formadd(&first, &last, CURLFORM_COPYNAME, "file", CURLFORM_FILE, fileName,
                           CURLFORM_END));
        AddTexts(fileName);
    }
    void AddContent(const std::string& content) {
        Check(curl_formadd(&first, &last, CURLFORM_COPYNAME, "file", CURLFORM_BUFFER, "content",
                           CURLFORM_BUFFERPTR, content.c_str(), CURLFORM_BUFFERLENGTH,
                           static_cast<long>(content.size() + 1), CURLFORM_END));
        AddTexts("content");
    }

    void Post(const std::string& url) {
        Exchange exchange(url);
        headers = curl_slist_append(nullptr, "Expect:");
        Set(exchange.curl, CURLOPT_HTTPHEADER, headers);
        Set(exchange.curl, CURLOPT_HTTPPOST, first);
        exchange.Perform();
    }

private:
    static void Check(CURLFORMcode code) {
        if (code != 0) {
            throw std::runtime_error("curl_formadd() returned " + std::to_string(code));
        }
    }
    void AddTexts(const char* fileName) {
        Check(curl_formadd(&first, &last, CURLFORM_COPYNAME, "filename", CURLFORM_COPYCONTENTS,
                           fileName, CURLFORM_END));
        Check(curl_formadd(&first, &last, CURLFORM_COPYNAME, "submit", CURLFORM_COPYCONTENTS,
                           "send", CURLFORM_END));
    }

    curl_httppost* first = nullptr;
    curl_httppost* last = nullptr;
    curl_slist* headers = nullptr;
};

class BareClient : public HandClient {
public:
    explicit BareClient(const std::string& address) : server(address) {}

protected:
    std::string Url(const std::string& target) const {
        return "http://" + server + target;
    }

private:
    std::string Get(const std::string& target) override {
        Exchange exchange(Url(target));
        Set(exchange.curl, CURLOPT_NOPROGRESS, 1L);
        Set(exchange.curl, CURLOPT_VERBOSE, 0L);
        return exchange.Perform();
    }
    void PostContent(const std::string& target, const std::string& content) override {
        Form form;
        form.AddContent(content);
        form.Post(Url(target));
    }
    void PostFile(const std::string& target, const std::string& fileName) override {
        Form form;
        form.AddFile(fileName.c_str());
        form.Post(Url(target));
    }

    const std::string server;
};

/// A temporary file as mkstemp() makes it.
class HandFile {
public:
    explicit HandFile(const std::string& content) {
        const char* const folder = std::getenv("TMPDIR");
        name = std::string(folder != nullptr ? folder : "/tmp") + "/bench-XXXXXX";
        const int descriptor = mkstemp(name.data());
        const std::size_t size = content.size() + 1;
        const bool isWritten = descriptor >= 0 && write(descriptor, content.c_str(), size) ==
                                                      static_cast<ssize_t>(size);
        if (!isWritten || close(descriptor) != 0) {
            throw std::system_error(errno, std::generic_category(), name);
        }
    }
    HandFile(const HandFile&) = delete;
    HandFile& operator=(const HandFile&) = delete;
    ~HandFile() {
        unlink(name.c_str());
    }

    std::string name;
};

class FileClient : public BareClient {
public:
    using BareClient::BareClient;

private:
    void PostContent(const std::string& target, const std::string& content) override {
        const HandFile file(content);
        Form form;
        form.AddFile(file.name.c_str());
        form.Post(Url(target));
    }
};

class ContractClient : public BareClient {
public:
    using BareClient::BareClient;

private:
    void PostContent(const std::string& target, const std::string& content) override {
        MirrinFramework::TempFile file(10);
        file.Write(MirrinFramework::ByteArray(content.c_str(), content.size() + 1));
        file.Close();
        Form form;
        form.AddFile(file.GetName().c_str());
        form.Post(Url(target));
    }
};

} // namespace

std::unique_ptr<Client> MakeBareClient(const std::string& server) {
    return std::make_unique<BareClient>(server);
}

std::unique_ptr<Client> MakeFileClient(const std::string& server) {
    return std::make_unique<FileClient>(server);
}

std::unique_ptr<Client> MakeContractClient(const std::string& server) {
    return std::make_unique<ContractClient>(server);
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
