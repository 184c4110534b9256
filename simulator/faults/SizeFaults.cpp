#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

constexpr std::size_t megabyte = 1000000;

std::string Nothing(const Occasion&) {
    return "";
}

std::string Padded(const Occasion& occasion) {
    return occasion.healthy.body + std::string(16 * megabyte, ' ');
}

void Endless(Line& line, const Occasion& occasion) {
    line.Send(HeadText(occasion.healthy, "") + occasion.healthy.body);
    const std::string more(megabyte, ' ');
    for (;;) {
        line.Send(more);
    }
}

} // namespace

std::vector<Fault> SizeFaults() {
    return {
        {"body-empty", "a body of no bytes", When::InReply, WithBodyMade(Nothing)},
        {"body-16-mb", "16 MB of blanks behind the body", When::InReply, WithBodyMade(Padded)},
        {"body-endless", "blanks without end behind the body, as fast as they are taken",
         When::InReply, Endless},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
