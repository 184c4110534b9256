#pragma once

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

/// A file of the page, as it lies in the folder "files".
struct PageFile {
    std::string name;
    std::string type;
    /// Its entity tag, with its quotes.
    std::string tag;
    std::string bytes;
};

/// All of them, built into the program.
const std::vector<PageFile>& PageFiles();

} // namespace TavoSimulator
} // namespace Brenmoor
