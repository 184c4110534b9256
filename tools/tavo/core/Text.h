#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Brenmoor {
namespace Tavo {

/// The text with control characters as \n, \t, \r or \xHH, so that it stays
/// on its line and leaves a terminal alone. Bytes above 0x7F pass, but for the control characters
/// that UTF-8 codes in two bytes.
std::string Escaped(const std::string& text);

/// The text with white space that has a line end in it as one blank, and none at its ends; then
/// escaped.
std::string OneLine(const std::string& text);

/// The words joined by blanks, in lines of at most `width` columns with `indent` blanks before
/// each, the last one with a line end too.
std::string Wrapped(const std::string& text, std::size_t indent, std::size_t width);

/// The text with a capital at its beginning and a full stop at its end.
std::string Sentence(std::string text);

/// The text with each key's first place taken by its value.
std::string Filled(std::string text,
                   const std::vector<std::pair<std::string, std::string>>& values);

std::string Joined(const std::vector<std::string>& parts, const std::string& separator);

} // namespace Tavo
} // namespace Brenmoor
