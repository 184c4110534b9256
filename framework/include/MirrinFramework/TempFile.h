#pragma once

#include <MirrinFramework/ByteArray.h>
#include <MirrinFramework/Export.h>

#include <string>

namespace Brenmoor {
namespace MirrinFramework {

/// A new file of the process's own, removed when the object is destroyed.
///
/// It lies in the folder that the environment's TMPDIR names, or in /tmp, may be read and written
/// by its owner only, and is not handed on to programs that the process starts. A failure of the
/// file's is a std::system_error whose text names it. One thread at a time may use an object.
class MIRRIN_EXPORT TempFile {
public:
    /// Creates the file, with that many random letters and digits in its name.
    explicit TempFile(unsigned randomCharacters);
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    /// Closes and removes the file.
    ~TempFile();

    /// Appends all of `bytes`. After a failure the file holds an unknown part of them.
    void Write(const ByteArray& bytes);

    /// Closes the file, which stays on disk; a second call does nothing, a later Write fails.
    void Close();

    /// The file's path: TMPDIR as it stands, so relative if that is, and the file's name.
    const std::string& GetName() const;

private:
    std::string name;
    int descriptor;
};

} // namespace MirrinFramework
} // namespace Brenmoor
