#pragma once

#include <exception>
#include <gtest/gtest.h>
#include <string>
#include <typeinfo>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// Expects `action` to throw exactly an `Exception`, not one derived from it, with exactly that
/// message; `check`, if given, sees it.
template <typename Exception, typename Action, typename Check>
void ExpectThrows(const Action& action, const std::string& message, const Check& check) {
    try {
        action();
        ADD_FAILURE() << "nothing was thrown; expected: " << message;
    } catch (const std::exception& e) {
        EXPECT_STREQ(typeid(e).name(), typeid(Exception).name());
        EXPECT_EQ(std::string(e.what()), message);
        if (const auto* const exact = dynamic_cast<const Exception*>(&e)) {
            check(*exact);
        }
    }
}

template <typename Exception, typename Action>
void ExpectThrows(const Action& action, const std::string& message) {
    ExpectThrows<Exception>(action, message, [](const Exception&) {});
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
