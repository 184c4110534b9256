#include <MirrinFramework/TempFile.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Brenmoor {
namespace MirrinFramework {

namespace {

// Enough for any realistic number of clashes, and an end when the names run out.
constexpr int attempts = 100;

[[noreturn]] void ThrowSystemError(int error, const char* doing, const std::string& name) {
    throw std::system_error(error, std::generic_category(),
                            std::string("Failed to ") + doing + " temporary file '" + name + "'");
}

std::string Folder() {
    const char* const folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

std::string RandomCharacters(unsigned count) {
    static constexpr char alphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device source;
    std::uniform_int_distribution<std::size_t> pick(0, sizeof alphabet - 2);
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        text += alphabet[pick(source)];
    }
    return text;
}

} // namespace

TempFile::TempFile(unsigned randomCharacters) : descriptor(-1) {
    const std::string prefix = Folder() + "/mirrin-";
    for (int attempt = 0; descriptor < 0; ++attempt) {
        name = prefix + RandomCharacters(randomCharacters);
        descriptor = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
        const bool mayTryAgain = errno == EEXIST || errno == EINTR;
        if (descriptor < 0 && (!mayTryAgain || attempt == attempts)) {
            ThrowSystemError(errno, "create", name);
        }
    }
}

TempFile::~TempFile() {
    if (descriptor >= 0) {
        close(descriptor);
    }
    unlink(name.c_str());
}

void TempFile::Write(const ByteArray& bytes) {
    const char* next = static_cast<const char*>(bytes.Data());
    std::size_t left = bytes.Size();
    while (left > 0) {
        const ssize_t written = write(descriptor, next, left);
        if (written >= 0) {
            next += written;
            left -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            ThrowSystemError(errno, "write", name);
        }
    }
}

void TempFile::Close() {
    if (descriptor < 0) {
        return;
    }
    const int closing = descriptor;
    // Linux releases the descriptor even when close() fails, so it must not be closed again.
    descriptor = -1;
    if (close(closing) != 0 && errno != EINTR) {
        ThrowSystemError(errno, "close", name);
    }
}

const std::string& TempFile::GetName() const {
    return name;
}

} // namespace MirrinFramework
} // namespace Brenmoor
