#include "agent/Journal.h"

#include "core/Failure.h"
#include "core/Output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <json/reader.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Brenmoor {
namespace Tavo {

namespace {

using TavoRemotingLib::HalcyrREST;

constexpr std::size_t mostAnswered = 1000;
constexpr std::size_t mostAdded = std::size_t{4} * 1024 * 1024;
const std::vector<std::string> stateNames = {"received", "started", "ended", "answered"};

/// JSON holds texts, and a command may be any bytes: each byte becomes the character of its number.
std::string ToUtf8(const std::string& bytes) {
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            text += character;
        } else {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

std::string FromUtf8(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0xC0 && i + 1 < text.size()) {
            bytes +=
                static_cast<char>((byte << 6) | (static_cast<unsigned char>(text[++i]) & 0x3F));
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

std::string Line(const Task& task) {
    Json::Value line;
    line["number"] = Json::UInt64(task.number);
    line["state"] = stateNames[static_cast<std::size_t>(task.state)];
    line["id"] = ToUtf8(task.command.id);
    line["tag"] = ToUtf8(task.command.tag);
    line["command"] = ToUtf8(task.command.command);
    line["isFile"] = task.command.isFile;
    if (task.state == Task::State::Ended) {
        line["answer"] = ToUtf8(task.answer);
    }
    line["succeeded"] = task.succeeded;
    return JsonLine(line) + "\n";
}

bool IsSame(const HalcyrREST::RemoteCommand& one, const HalcyrREST::RemoteCommand& other) {
    return one.id == other.id && one.tag == other.tag && one.command == other.command &&
           one.isFile == other.isFile;
}

bool IsAnswered(const Task& task) {
    return task.state == Task::State::Answered;
}

bool IsTaskLine(const Json::Value& line) {
    const auto isText = [&](const char* name) {
        return line[name].isString();
    };
    return line.isObject() && line["number"].isUInt64() && isText("state") && isText("id") &&
           isText("tag") && isText("command") && line["isFile"].isBool() &&
           line["succeeded"].isBool() && (line["answer"].isNull() || isText("answer")) &&
           std::count(stateNames.begin(), stateNames.end(), line["state"].asString()) == 1;
}

int Open(const std::string& name, int flags) {
    const int opened = open(name.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | flags, 0600);
    if (opened < 0) {
        throw FileError("open", name, errno);
    }
    return opened;
}

/// Opens the file and locks it. The lock is good only while the file has that name: another agent
/// may have written it anew before it gave up its lock.
int OpenLocked(const std::string& name) {
    while (true) {
        const int opened = Open(name, O_CREAT | O_NONBLOCK);
        struct stat mine {};
        struct stat named {};
        fstat(opened, &mine);
        const bool isLocked = S_ISREG(mine.st_mode) && flock(opened, LOCK_EX | LOCK_NB) == 0;
        if (isLocked && stat(name.c_str(), &named) == 0 && named.st_ino == mine.st_ino &&
            named.st_dev == mine.st_dev) {
            return opened;
        }
        close(opened);
        if (!S_ISREG(mine.st_mode)) {
            throw LocalError("'" + name + "' is no file for a journal",
                             "name another with --journal");
        }
        if (!isLocked) {
            throw LocalError("another agent uses the journal '" + name + "'",
                             "stop it, or name another file with --journal");
        }
    }
}

/// Lets a file's new name outlive a loss of power.
void SyncFolder(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isSynced = opened >= 0 && fsync(opened) == 0;
    const int error = errno;
    if (opened >= 0) {
        close(opened);
    }
    if (!isSynced) {
        throw FileError("write", folder, error);
    }
}

} // namespace

Journal::Journal(const std::string& thePath) : path(thePath), file(OpenLocked(path)) {
    try {
        Load();
        Rewrite();
    } catch (...) {
        close(file);
        throw;
    }
}

Journal::~Journal() {
    close(file);
}

void Journal::Load() {
    std::ifstream in(path, std::ios::binary);
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    std::string text;
    // A line without its end was cut short, and whatever it told was not acted upon.
    while (std::getline(in, text) && !in.eof()) {
        Json::Value line;
        if (!reader->parse(text.data(), text.data() + text.size(), &line, nullptr) ||
            !IsTaskLine(line)) {
            throw LocalError("'" + path + "' is not an agent's journal",
                             "name another file with --journal, or remove it");
        }
        Apply(line);
    }
    if (!in.is_open() || in.bad()) {
        throw FileError("read", path, errno); // to be replaced only once it is known
    }
    for (Task& task : tasks) {
        if (task.state == Task::State::Started) {
            task.state = Task::State::Ended;
            task.answer = "[interrupted: the agent ended while this ran; it is not run again]";
            task.succeeded = false;
        }
    }
}

void Journal::Apply(const Json::Value& line) {
    Task task;
    task.number = line["number"].asUInt64();
    task.command.id = FromUtf8(line["id"].asString());
    task.command.tag = FromUtf8(line["tag"].asString());
    task.command.command = FromUtf8(line["command"].asString());
    task.command.isFile = line["isFile"].asBool();
    const auto name = std::find(stateNames.begin(), stateNames.end(), line["state"].asString());
    task.state = static_cast<Task::State>(name - stateNames.begin());
    task.answer = FromUtf8(line["answer"].asString());
    task.succeeded = line["succeeded"].asBool();
    const auto known = std::find_if(tasks.rbegin(), tasks.rend(),
                                    [&](const Task& other) { return other.number == task.number; });
    if (known == tasks.rend()) {
        tasks.push_back(task);
    } else {
        *known = task;
    }
    lastNumber = std::max(lastNumber, task.number);
}

std::deque<Task>& Journal::Tasks() {
    return tasks;
}

Task* Journal::Find(const HalcyrREST::RemoteCommand& command) {
    const auto found = std::find_if(tasks.rbegin(), tasks.rend(), [&](const Task& task) {
        return IsSame(task.command, command);
    });
    return command.tag.empty() || found == tasks.rend() ? nullptr : &*found;
}

void Journal::Add(Task task) {
    task.number = ++lastNumber;
    Append(Line(task));
    tasks.push_back(std::move(task));
}

void Journal::Note(const Task& task) {
    Append(Line(task));
}

void Journal::Append(const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(file, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            throw FileError("write", path, errno);
        }
        written += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    if (fdatasync(file) != 0) {
        throw FileError("write", path, errno);
    }
    added += text.size();
}

void Journal::Forget() {
    auto answered = static_cast<std::size_t>(std::count_if(tasks.begin(), tasks.end(), IsAnswered));
    while (answered > mostAnswered) {
        tasks.erase(std::find_if(tasks.begin(), tasks.end(), IsAnswered));
        --answered;
    }
    if (added > mostAdded) {
        Rewrite();
    }
}

void Journal::Rewrite() {
    const std::string unfinished = path + ".new";
    std::remove(unfinished.c_str());
    const int former = file;
    file = Open(unfinished, O_CREAT | O_EXCL);
    std::string text;
    for (const Task& task : tasks) {
        text += Line(task);
    }
    try {
        flock(file, LOCK_EX | LOCK_NB);
        Append(text);
    } catch (...) {
        close(former);
        throw;
    }
    // The name goes over to a file that is whole, and locked already.
    const bool isRenamed = std::rename(unfinished.c_str(), path.c_str()) == 0;
    const int error = errno;
    close(former);
    if (!isRenamed) {
        throw FileError("replace", path, error);
    }
    SyncFolder(path);
    added = 0;
}

} // namespace Tavo
} // namespace Brenmoor
