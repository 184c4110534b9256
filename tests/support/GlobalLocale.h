#pragma once

#include <locale>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// While it lives, the process's C++ locale is the classic one with that facet, which it owns.
class GlobalLocale {
public:
    template <typename Facet>
    explicit GlobalLocale(Facet* facet)
        : previous(std::locale::global(std::locale(std::locale::classic(), facet))) {}
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;
    ~GlobalLocale() {
        std::locale::global(previous);
    }

private:
    const std::locale previous;
};

/// Writes 1234 as 1'2'3'4.
class DigitGrouping : public std::numpunct<char> {
protected:
    char do_thousands_sep() const override {
        return '\'';
    }
    std::string do_grouping() const override {
        return "\1";
    }
};

/// Takes "!" for white space, and "F" for the capital of "#".
class OddLetters : private std::vector<std::ctype_base::mask>, public std::ctype<char> {
public:
    OddLetters() : vector(classic_table(), classic_table() + table_size), std::ctype<char>(data()) {
        at('!') |= space;
    }

protected:
    char do_toupper(char character) const override {
        return character == '#' ? 'F' : std::ctype<char>::do_toupper(character);
    }
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
