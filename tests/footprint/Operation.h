#pragma once

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

/// What an operation works with.
struct Call {
    std::string server;
    std::string id;
    std::string file;     ///< a registration document
    std::string document; ///< its content
};

/// One operation of the client, or what a program without the library does in its place.
struct Operation {
    const char* name;
    /// Whether a reply that is not OK is an exception.
    bool throwsWhenRefused;
    void (*run)(const Call& call);
};

// Each of these is there twice: once over the library (Library*.cpp), once written by hand over
// libcurl and jsoncpp (Bare*.cpp). Both have the same operations under the same names.

/// Asks for commands, position and shutdown, and reads the reply.
void Poll(const Call& call);

std::vector<Operation> Gets();
std::vector<Operation> Uploads();
/// Those that exchange nothing.
std::vector<Operation> Documents();

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
