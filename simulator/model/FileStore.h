#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// A name that stays inside a folder whatever was asked for: letters, digits, full stops, hyphens
/// and underscores, no full stop in front, at most 120 characters, never empty. The parts of a
/// path are joined by underscores.
std::string SafeName(const std::string& wanted);

/// The last part of a path.
std::string BaseName(const std::string& path);

/// The SHA-256 of a file in small hexadecimal digits; of what can be read of it.
std::string Sha256(const std::string& path);

/// The folder where uploads are kept. Nothing in it is ever replaced: an upload whose name is
/// taken gets a number. Every operation may be called from any thread.
class FileStore {
public:
    class Upload;

    /// Makes the folder if it is missing. Throws std::filesystem::filesystem_error.
    explicit FileStore(const std::string& folder);

    const std::filesystem::path& Folder() const;

    /// The path of the kept file of this name, or an empty one when there is none.
    std::filesystem::path Find(const std::string& name) const;

private:
    std::filesystem::path folder;
};

/// A file on its way into the store. It is not to be seen there, and gone with this object,
/// unless Keep was called.
class FileStore::Upload {
public:
    explicit Upload(const FileStore& store);
    Upload(const Upload&) = delete;
    Upload& operator=(const Upload&) = delete;
    ~Upload();

    /// Where the bytes are to be written.
    std::ostream& Stream();

    /// Puts the file into the store under a safe name made from `wanted`, which is returned.
    /// Throws std::runtime_error when the bytes could not be written.
    std::string Keep(const std::string& wanted, std::uintmax_t& size);

private:
    const FileStore& store;
    std::string temporary;
    std::ofstream stream;
};

} // namespace TavoSimulator
} // namespace Brenmoor
