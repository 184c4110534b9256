#pragma once

#include "Expectation.h"
#include "wire/Json.h"

#include <optional>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// One about the payload whose identifier is the member "id".
class PayloadExpectation : public Expectation {
public:
    explicit PayloadExpectation(const Members& members);

    std::string Missing(const World& world) const override;

protected:
    /// As Missing, while nothing changes the payload.
    virtual std::string MissingFrom(const Payload& payload) const = 0;

    static std::optional<std::string> OptionalText(const Members& members, const char* name);
    static std::optional<bool> OptionalFlag(const Members& members, const char* name);

    /// Whether a value is the wanted one, if any is.
    template <typename Wanted, typename Value>
    static bool Fits(const std::optional<Wanted>& wanted, const Value& value) {
        return !wanted || *wanted == value;
    }

    /// The beginning of a text, for people.
    static std::string Short(const std::string& text);

private:
    const std::string id;
};

} // namespace TavoSimulator
} // namespace Brenmoor
