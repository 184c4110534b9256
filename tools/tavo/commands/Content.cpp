#include "commands/Content.h"

#include "core/Failure.h"

#include <cctype>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {

namespace {

int ValueOf(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const int letter = std::toupper(static_cast<unsigned char>(digit));
    return letter >= 'A' && letter <= 'F' ? letter - 'A' + 10 : -1;
}

} // namespace

std::string StandardInput() {
    std::string text;
    char buffer[65536];
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
        if (count == 0) {
            return text;
        }
        if (count < 0 && errno != EINTR) {
            throw FileError("read", "standard input", errno);
        }
        text.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

std::string BytesOfHex(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (std::isspace(static_cast<unsigned char>(text[i])) != 0) {
            continue;
        }
        const int high = ValueOf(text[i]);
        const int low = i + 1 < text.size() ? ValueOf(text[i + 1]) : -1;
        if (high < 0 || low < 0) {
            throw UsageError("'" + text.substr(i, 2) + "' is not a byte in hexadecimal",
                             "write pairs of digits, such as 00FF or '00 FF'");
        }
        bytes += static_cast<char>(high * 16 + low);
        ++i;
    }
    return bytes;
}

Load LoadOf(const std::string& file) {
    struct stat status = {};
    if (stat(file.c_str(), &status) != 0 || access(file.c_str(), R_OK) != 0) {
        throw FileError("read", file, errno);
    }
    if (S_ISDIR(status.st_mode)) {
        throw FileError("read", file, EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        return {};
    }
    return {static_cast<std::uint64_t>(status.st_size), file};
}

std::string Bytes(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

} // namespace Tavo
} // namespace Brenmoor
