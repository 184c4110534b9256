#pragma once

#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Printable ASCII as it is, except the backslash, which is doubled; every other byte as a
/// backslash, a small x and two capital hexadecimal digits.
std::string Escape(const std::string& bytes);

/// Turns Escape back. Throws a Refusal for a text that Escape cannot have made, apart from small
/// hexadecimal digits, which are taken too.
std::string Unescape(const std::string& text);

/// Two capital hexadecimal digits for every byte.
std::string Hexadecimal(const std::string& bytes);

} // namespace TavoSimulator
} // namespace Brenmoor
