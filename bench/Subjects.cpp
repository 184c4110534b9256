#include "Subjects.h"

#include "Client.h"
#include "LocalSubjects.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <memory>
#include <stdexcept>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

namespace {

constexpr std::size_t kib = 1024;
constexpr std::size_t mib = 1024 * kib;
constexpr unsigned getsOfAThread = 4;

void ExpectSize(std::size_t size, std::size_t expected) {
    if (size != expected) {
        throw std::runtime_error("got " + std::to_string(size) + " instead of " +
                                 std::to_string(expected));
    }
}

void Get(Client& client, std::size_t size) {
    ExpectSize(client.RunScript(std::to_string(size)).size(), size);
}

void GetByThreads(Client& client, unsigned count) {
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        threads.emplace_back([&client] {
            for (unsigned k = 0; k < getsOfAThread; ++k) {
                Get(client, 2);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Bytes that differ by their place.
std::string Content(std::size_t size) {
    std::string content;
    for (std::size_t i = 0; i < size; ++i) {
        content += static_cast<char>('!' + (i * 7 + i / 251) % 94);
    }
    return content;
}

using Maker = std::shared_ptr<Client>;

std::vector<Subject> Polls(const Maker& client) {
    std::vector<Subject> all;
    for (const std::size_t count : {1U, 100U, 1000U, 10000U}) {
        const std::string number = std::to_string(count);
        const std::size_t size = client->RunScript("poll" + number).size();
        const unsigned runs = count == 1 ? 20 : 1;
        all.push_back({"poll-" + number, size, runs, [client, number, count] {
                           ExpectSize(client->Poll(number), count);
                       }});
        // Its decoding is what the poll takes beyond this.
        all.push_back({"reply-" + number, size, runs, [client, number, size] {
                           ExpectSize(client->RunScript("poll" + number).size(), size);
                       }});
    }
    return all;
}

std::vector<Subject> Threads(const Maker& client) {
    std::vector<Subject> all;
    for (const unsigned count : {1U, 4U, 16U}) {
        const std::size_t size = std::size_t{2} * getsOfAThread * count;
        all.push_back({"threads-" + std::to_string(count), size, 1, [client, count] {
                           GetByThreads(*client, count);
                       }});
    }
    return all;
}

Subject GetOf(const Maker& client, const std::string& name, std::size_t size, unsigned runs) {
    return {name, size, runs, [client, size] {
                Get(*client, size);
            }};
}

Subject UploadOf(const Maker& client, const std::string& name, std::size_t size, unsigned runs) {
    return {name, size, runs, [client, content = Content(size)] {
                client->UploadContent(content);
            }};
}

Subject FileOf(const Maker& client, const std::string& file) {
    const auto size = static_cast<std::size_t>(boost::filesystem::file_size(file));
    return {"upload-file", size, 1, [client, file, size] {
                client->UploadFile(file, size);
            }};
}

void Append(std::vector<Subject>& all, const std::vector<Subject>& more) {
    all.insert(all.end(), more.begin(), more.end());
}

std::vector<Subject> All(const std::string& name, const Maker& client, const std::string& file) {
    const bool isOnlyForUploads = name == "file" || name == "contract";
    std::vector<Subject> all;
    if (!isOnlyForUploads) {
        all = {GetOf(client, "get", 2, 20), GetOf(client, "get-8mb", 8 * mib, 1)};
    }
    all.push_back(UploadOf(client, "upload-1kb", kib, 10));
    all.push_back(UploadOf(client, "upload-1mb", mib, 2));
    if (!isOnlyForUploads) {
        all.push_back(FileOf(client, file));
        Append(all, Polls(client));
    }
    Append(all, LocalSubjects(name, *client));
    // Last, since memory is handed out at another cost once a process has had threads.
    if (!isOnlyForUploads) {
        Append(all, Threads(client));
    }
    return all;
}

} // namespace

std::vector<Subject> Subjects(const std::string& client, const std::string& server,
                              const std::string& file, const std::vector<std::string>& names) {
    std::vector<Subject> all = All(client, MakeClient(client, server), file);
    const auto isUnwanted = [&names](const Subject& subject) {
        return !names.empty() && std::find(names.begin(), names.end(), subject.name) == names.end();
    };
    all.erase(std::remove_if(all.begin(), all.end(), isUnwanted), all.end());
    return all;
}

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
