#include "FileStore.h"

#include <Poco/SHA2Engine.h>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr std::size_t longestName = 120;
constexpr char allowed[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";

std::string Numbered(const std::string& name, unsigned number) {
    if (number == 1) {
        return name;
    }
    const std::filesystem::path path(name);
    return path.stem().string() + "-" + std::to_string(number) + path.extension().string();
}

std::string JoinedParts(const std::string& path) {
    std::string joined;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find_first_of("/\\", begin), path.size());
        const std::string part = path.substr(begin, end - begin);
        if (!part.empty() && part != "." && part != "..") {
            joined += (joined.empty() ? "" : "_") + part;
        }
        begin = end + 1;
    }
    return joined;
}

} // namespace

std::string SafeName(const std::string& wanted) {
    std::string name = JoinedParts(wanted);
    for (char& character : name) {
        if (std::string_view(allowed).find(character) == std::string_view::npos) {
            character = '_';
        }
    }
    if (name.size() > longestName) {
        // The end of a name tells what kind of file it is.
        name.erase(0, name.size() - longestName);
    }
    if (name.empty()) {
        return "unnamed";
    }
    if (name.front() == '.') {
        name.front() = '_';
    }
    return name;
}

std::string BaseName(const std::string& path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

std::string Sha256(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    Poco::SHA2Engine engine(Poco::SHA2Engine::SHA_256);
    std::vector<char> piece(std::size_t{64} * 1024);
    while (file.read(piece.data(), static_cast<std::streamsize>(piece.size())), file.gcount() > 0) {
        engine.update(piece.data(), static_cast<std::size_t>(file.gcount()));
    }
    return Poco::DigestEngine::digestToHex(engine.digest());
}

FileStore::FileStore(const std::string& theFolder) : folder(std::filesystem::absolute(theFolder)) {
    std::filesystem::create_directories(folder);
}

const std::filesystem::path& FileStore::Folder() const {
    return folder;
}

std::filesystem::path FileStore::Find(const std::string& name) const {
    if (name != SafeName(name)) {
        return {};
    }
    const std::filesystem::path path = folder / name;
    const bool isFile =
        std::filesystem::symlink_status(path).type() == std::filesystem::file_type::regular;
    return isFile ? path : std::filesystem::path();
}

FileStore::Upload::Upload(const FileStore& theStore)
    : store(theStore), temporary((store.Folder() / ".upload-XXXXXX").string()) {
    const int descriptor = mkstemp(temporary.data());
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "No upload can be kept");
    }
    close(descriptor);
    stream.open(temporary, std::ios::binary | std::ios::trunc);
}

FileStore::Upload::~Upload() {
    unlink(temporary.c_str());
}

std::ostream& FileStore::Upload::Stream() {
    return stream;
}

std::string FileStore::Upload::Keep(const std::string& wanted, std::uintmax_t& size) {
    stream.close();
    if (!stream) {
        throw std::runtime_error("The upload could not be written");
    }
    size = std::filesystem::file_size(temporary);
    const std::string safe = SafeName(wanted);
    for (unsigned number = 1;; ++number) {
        const std::string name = Numbered(safe, number);
        // A link, unlike a rename, never replaces a file that is there.
        if (link(temporary.c_str(), (store.Folder() / name).c_str()) == 0) {
            return name;
        }
        if (errno != EEXIST) {
            throw std::system_error(errno, std::generic_category(), "The upload cannot be kept");
        }
    }
}

} // namespace TavoSimulator
} // namespace Brenmoor
