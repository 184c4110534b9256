#include "PrivateDirty.h"

#include <fstream>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

namespace {

// Wider than this process's own addresses, which under qemu-arm have 32 bits.
using Address = unsigned long long;

/// The name behind the five columns that every mapping has.
std::string FileName(std::istringstream& columns) {
    std::string skipped;
    std::string path;
    columns >> skipped >> skipped >> skipped >> skipped >> path;
    const bool isFile = !path.empty() && path[0] == '/';
    return isFile ? path.substr(path.rfind('/') + 1) : "(no file)";
}

} // namespace

void PrintPrivateDirty(std::ostream& out, const char* guestBase) {
    const Address low = guestBase == nullptr ? 0 : std::stoull(guestBase, nullptr, 16);
    const Address size = guestBase == nullptr ? ~Address(0) : Address(1) << 32U;
    std::map<std::string, long> sizes;
    long total = 0;
    bool counts = false;
    std::string file;
    std::ifstream smaps("/proc/self/smaps");
    for (std::string line; std::getline(smaps, line);) {
        std::istringstream columns(line);
        std::string key;
        long kibibytes = 0;
        columns >> key;
        if (key.back() != ':') {
            counts = std::stoull(key, nullptr, 16) - low < size;
            file = FileName(columns);
        } else if (counts && key == "Private_Dirty:" && columns >> kibibytes && kibibytes > 0) {
            sizes[file] += kibibytes;
            total += kibibytes;
        }
    }
    if (total == 0) {
        throw std::runtime_error("/proc/self/smaps shows no private dirty memory");
    }
    out << "total " << total << "\n";
    for (const auto& [name, kibibytes] : sizes) {
        out << name << " " << kibibytes << "\n";
    }
}

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
