#include "PayloadExpectation.h"

namespace Brenmoor {
namespace TavoSimulator {

PayloadExpectation::PayloadExpectation(const Members& members) : id(members.Text("id")) {}

std::string PayloadExpectation::Missing(const World& world) const {
    std::string missing = "there is no such payload";
    world.payloads.Look([&](const PayloadRegistry::Payloads& payloads) {
        const auto found = payloads.find(id);
        if (found != payloads.end()) {
            missing = MissingFrom(found->second);
        }
    });
    return missing;
}

std::optional<std::string> PayloadExpectation::OptionalText(const Members& members,
                                                            const char* name) {
    return members.Has(name) ? std::optional<std::string>(members.Text(name)) : std::nullopt;
}

std::optional<bool> PayloadExpectation::OptionalFlag(const Members& members, const char* name) {
    return members.Has(name) ? std::optional<bool>(members.Flag(name)) : std::nullopt;
}

std::string PayloadExpectation::Short(const std::string& text) {
    constexpr std::size_t most = 200;
    return text.size() <= most ? text : text.substr(0, most) + "...";
}

} // namespace TavoSimulator
} // namespace Brenmoor
