#include "Bare.h"

#include <curl/curl.h>
#include <fstream>
#include <iterator>
#include <json/reader.h>
#include <memory>
#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

namespace {

std::size_t Append(char* data, std::size_t size, std::size_t count, void* body) {
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

void Perform(CURL* curl, const std::string& url, std::string& body) {
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Append);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
    const CURLcode code = curl_easy_perform(curl);
    if (code != CURLE_OK) {
        throw std::runtime_error(curl_easy_strerror(code));
    }
}

} // namespace

std::string BareGet(const std::string& url) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(),
                                                                   &curl_easy_cleanup);
    std::string body;
    Perform(curl.get(), url, body);
    return body;
}

void BareUpload(const std::string& url, const std::string& content, bool contentIsFileName) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(),
                                                                   &curl_easy_cleanup);
    const std::unique_ptr<curl_mime, decltype(&curl_mime_free)> form(curl_mime_init(curl.get()),
                                                                     &curl_mime_free);
    curl_mimepart* const file = curl_mime_addpart(form.get());
    curl_mime_name(file, "file");
    if (contentIsFileName) {
        curl_mime_filedata(file, content.c_str());
    } else {
        curl_mime_data(file, content.data(), content.size());
        curl_mime_filename(file, "content");
    }
    curl_mimepart* const name = curl_mime_addpart(form.get());
    curl_mime_name(name, "filename");
    curl_mime_data(name, contentIsFileName ? content.c_str() : "content", CURL_ZERO_TERMINATED);
    curl_mimepart* const submit = curl_mime_addpart(form.get());
    curl_mime_name(submit, "submit");
    curl_mime_data(submit, "send", CURL_ZERO_TERMINATED);
    curl_easy_setopt(curl.get(), CURLOPT_MIMEPOST, form.get());
    std::string body;
    Perform(curl.get(), url, body);
}

std::string BareRead(const std::string& fileName) {
    std::ifstream file(fileName);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The reader that the library uses too, so that its stack and memory are the same.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Json::Value BareParse(const std::string& text) {
    Json::Reader reader;
    Json::Value value;
    if (!reader.parse(text, value, false)) {
        throw std::runtime_error(reader.getFormattedErrorMessages());
    }
    return value;
}
#pragma GCC diagnostic pop

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
