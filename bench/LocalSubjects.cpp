#include "LocalSubjects.h"

#include "HandJson.h"

#include <MirrinFramework/Ultos.h>

#include <Poco/URI.h>
#include <cctype>
#include <cstring>
#include <curl/curl.h>
#include <curlpp/cURLpp.hpp>
#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

using Hardware = HalcyrREST::PRHardware;

/// Commands for which a reply is decoded without an exchange.
const char* const counts[] = {"1", "100", "1000", "10000"};

constexpr std::size_t entries = 1000;
constexpr std::size_t textSize = 1024;
constexpr unsigned shortRuns = 20;

std::vector<Hardware> HardwareList() {
    std::vector<Hardware> list(entries);
    for (std::size_t i = 0; i < entries; ++i) {
        const std::string number = std::to_string(i);
        list[i] = {"Maker " + number, "Model " + number,   "PN-" + number, "SN-" + number,
                   "1.2." + number,   "/dev/tty" + number, true,           static_cast<int>(i),
                   "J" + number};
    }
    return list;
}

void Expect(bool isMet, const char* what) {
    if (!isMet) {
        throw std::runtime_error(what);
    }
}

template <typename Read>
void AddHardwareReading(std::vector<Subject>& all, Read read) {
    const std::string document = WriteHardware("{}", HardwareList());
    all.push_back({"hardware-read", document.size(), 1, [document, read] {
                       Expect(read(document) == entries, "an entry is missing");
                   }});
}

template <typename Write>
void AddHardwareWriting(std::vector<Subject>& all, Write write) {
    const std::vector<Hardware> list = HardwareList();
    const std::string document = WriteHardware("{}", list);
    all.push_back({"hardware-write", document.size(), 1, [document, list, write] {
                       Expect(write(document, list) == document, "the document is another");
                   }});
}

template <typename Encode>
void AddEncoding(std::vector<Subject>& all, Encode encode) {
    all.push_back({"encode-plain", textSize, shortRuns, [encode] {
                       static const std::string text(textSize, 'x');
                       Expect(encode(text).size() == textSize, "the text has changed");
                   }});
    all.push_back({"encode-worst", textSize, shortRuns, [encode] {
                       static const std::string text(textSize, '?');
                       Expect(encode(text).size() == 3 * textSize, "a byte is not escaped");
                   }});
}

template <typename Decode>
void AddDecoding(std::vector<Subject>& all, Client& client, const char* name, Decode decode) {
    for (const std::string number : counts) {
        const std::string body = client.RunScript("poll" + number);
        all.push_back({name + number, body.size(), number == "1" ? shortRuns : 1, [body, decode] {
                           Expect(decode(body), "the reply lacks something");
                       }});
    }
}

std::string EscapeByCurl(const std::string& text) {
    char* const escaped = curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size()));
    std::string result = escaped;
    curl_free(escaped);
    return result;
}

std::string EscapeByPoco(const std::string& text) {
    std::string result;
    Poco::URI::encode(text, "?", result);
    return result;
}

/// With each byte that needs an escape written by the framework.
std::string EscapeByContract(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0 || std::strchr("-_.~", character) != nullptr) {
            escaped += character;
        } else {
            escaped += '%' + MirrinFramework::ultos(byte, 16, 2, 0);
        }
    }
    return escaped;
}

std::vector<Subject> OfLibrary() {
    std::vector<Subject> all;
    AddHardwareReading(all, [](const std::string& document) {
        std::vector<Hardware> list;
        Hardware::InitFromRegJSON(document, list);
        return list.size();
    });
    AddHardwareWriting(all, &Hardware::UpdateJSON);
    AddEncoding(all, &HalcyrREST::EncodeURL);
    return all;
}

std::vector<Subject> OfBare(Client& client) {
    std::vector<Subject> all;
    AddDecoding(all, client, "parse-",
                [](const std::string& body) { return Parse(body).isObject(); });
    AddDecoding(all, client, "decode-",
                [](const std::string& body) { return !ReadPoll(body).empty(); });
    AddHardwareReading(all,
                       [](const std::string& document) { return ReadHardware(document).size(); });
    AddHardwareWriting(all, &WriteHardware);
    AddEncoding(all, &EscapeByCurl);
    return all;
}

std::vector<Subject> OfContract(Client& client) {
    std::vector<Subject> all;
    AddDecoding(all, client, "decode-",
                [](const std::string& body) { return !ReadPollByContract(body).empty(); });
    AddHardwareReading(
        all, [](const std::string& document) { return ReadHardwareByContract(document).size(); });
    AddEncoding(all, &EscapeByContract);
    return all;
}

} // namespace

std::vector<Subject> LocalSubjects(const std::string& name, Client& client) {
    std::vector<Subject> all;
    if (name == "library") {
        all = OfLibrary();
    } else if (name == "bare") {
        all = OfBare(client);
    } else if (name == "contract") {
        all = OfContract(client);
    } else if (name == "curlpp") {
        AddEncoding(all, [](const std::string& text) { return curlpp::escape(text); });
    } else if (name == "poco") {
        AddEncoding(all, &EscapeByPoco);
    }
    return all;
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
