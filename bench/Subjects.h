#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

/// From this size on a run takes seconds: it needs no warming, and one is long enough to be timed.
constexpr std::size_t largeBody = 50000000;

/// Something that is measured.
struct Subject {
    std::string name;
    std::size_t body; ///< bytes of body that pass in one run
    unsigned runs;    ///< how many of them one figure is taken over, when they are counted
    std::function<void()> run;
};

/// The subjects that the client knows (see MakeClient()), of them those in `names` unless that is
/// empty. `file` is the large file that is uploaded.
std::vector<Subject> Subjects(const std::string& client, const std::string& server,
                              const std::string& file, const std::vector<std::string>& names);

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
