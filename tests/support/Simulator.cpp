#include "support/Simulator.h"

#include <algorithm>
#include <curl/curl.h>
#include <fstream>
#include <json/reader.h>
#include <json/writer.h>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

std::vector<std::string> Words(const std::string& folder,
                               const std::vector<std::string>& arguments) {
    std::vector<std::string> words = CommandOf(SIMULATOR_PATH);
    words.insert(words.end(),
                 {"--quiet", "--data", folder + "/data", "--port-file", folder + "/port"});
    if (std::find(arguments.begin(), arguments.end(), "--port") == arguments.end()) {
        words.insert(words.end(), {"--port", "0"});
    }
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

std::size_t Append(char* data, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(data, size * count);
    return size * count;
}

/// The reply's body; a POST when there is something to post.
std::string Exchange(const std::string& url, const std::string* body) {
    const std::unique_ptr<CURL, void (*)(CURL*)> curl(curl_easy_init(), curl_easy_cleanup);
    const std::unique_ptr<curl_slist, void (*)(curl_slist*)> headers(
        curl_slist_append(nullptr, "Content-Type: application/json"), curl_slist_free_all);
    std::string reply;
    curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, &Append);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &reply);
    if (body != nullptr) {
        curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body->size()));
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, body->data());
    }
    const CURLcode code = curl_easy_perform(curl.get());
    if (code != CURLE_OK) {
        throw std::runtime_error(url + ": " + curl_easy_strerror(code));
    }
    return reply;
}

Json::Value Parsed(const std::string& text) {
    Json::Value value;
    std::istringstream stream(text);
    stream >> value;
    return value;
}

} // namespace

Simulator::Simulator(const std::string& ownFolder, const std::vector<std::string>& arguments)
    : folder(ownFolder), program(Words(ownFolder, arguments)) {
    const std::string line = program.ReadLine();
    std::string port;
    std::ifstream(folder + "/port") >> port;
    address = "127.0.0.1:" + port;
    if (line.find(" listens on 127.0.0.1 port " + port + " ") == std::string::npos) {
        throw std::runtime_error("the simulator does not listen: " + line);
    }
}

std::string Simulator::Address() const {
    return address;
}

void Simulator::QueueCommand(const std::string& id, const std::string& tag,
                             const std::string& command, bool isFile) const {
    Json::Value body;
    body["id"] = id;
    body["tag"] = tag;
    body["command"] = command;
    body["isFile"] = isFile;
    Post("commands", body);
}

void Simulator::ShutDown(const std::string& id, int inSeconds) const {
    Json::Value body;
    body["id"] = id;
    body["inSeconds"] = inSeconds;
    Post("shutdown", body);
}

void Simulator::Anchor(double latitude, double longitude) const {
    Json::Value body;
    body["latitude"] = latitude;
    body["longitude"] = longitude;
    body["speedMetresPerSecond"] = 0;
    body["noiseMetres"] = 0;
    body["fixIntervalSeconds"] = 3600;
    Post("vehicle", body);
}

int Simulator::Wait() {
    return program.Wait();
}

std::string Simulator::Output() {
    return program.RestOfOutput();
}

void Simulator::Arm(const std::string& fault, const std::string& operation, unsigned count) const {
    Json::Value body;
    body["fault"] = fault;
    body["count"] = count;
    if (!operation.empty()) {
        body["operation"] = operation;
    }
    Post("faults", body);
}

void Simulator::AwaitHeldPolls(unsigned count) const {
    while (State()["heldPolls"].asUInt() != count) {
        std::this_thread::yield();
    }
}

Json::Value Simulator::Payload(const std::string& id) const {
    const Json::Value state = State();
    for (const Json::Value& payload : state["payloads"]) {
        if (payload["id"].asString() == id) {
            return payload;
        }
    }
    return Json::Value();
}

std::vector<std::string> Simulator::Answers(const std::string& id) const {
    std::vector<std::string> answers;
    const Json::Value payload = Payload(id);
    for (const Json::Value& answer : payload["answers"]) {
        answers.push_back(answer["tag"].asString() + ": " + answer["text"].asString() +
                          (answer["complete"].asBool() ? "" : " (more follows)") +
                          (answer["succeeded"].asBool() ? "" : " (failed)"));
    }
    return answers;
}

std::vector<std::string> Simulator::Commands(const std::string& id) const {
    std::vector<std::string> commands;
    const Json::Value payload = Payload(id);
    for (const Json::Value& command : payload["commands"]) {
        commands.push_back(command["tag"].asString() + ": " + command["state"].asString());
    }
    return commands;
}

std::vector<std::string> Simulator::Targets() const {
    std::vector<std::string> targets;
    const Json::Value traffic = Parsed(Get("traffic"));
    for (const Json::Value& exchange : traffic["exchanges"]) {
        targets.push_back(exchange["target"].asString());
    }
    return targets;
}

std::vector<std::string> Simulator::Packets(const std::string& id) const {
    std::vector<std::string> packets;
    const Json::Value payload = Payload(id);
    for (const Json::Value& packet : payload["packets"]) {
        packets.push_back(Get("packets/" + packet["number"].asString()));
    }
    return packets;
}

std::vector<std::string> Simulator::Files(const std::string& id) const {
    std::vector<std::string> files;
    const Json::Value payload = Payload(id);
    for (const Json::Value& file : payload["files"]) {
        files.push_back(Get("files/" + file["name"].asString()));
    }
    return files;
}

Json::Value Simulator::State() const {
    return Parsed(Get("state"));
}

std::string Simulator::Get(const std::string& target) const {
    return Exchange("http://" + address + "/sim/v1/" + target, nullptr);
}

void Simulator::Post(const std::string& target, const Json::Value& body) const {
    const std::string text = body.toStyledString();
    Exchange("http://" + address + "/sim/v1/" + target, &text);
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
