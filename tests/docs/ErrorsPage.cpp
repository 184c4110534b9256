#include "docs/ErrorsPage.h"

#include <fstream>
#include <regex>
#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

/// The first two cells of every row in the tables whose header begins so.
std::vector<std::pair<std::string, std::string>> Rows(const std::string& header) {
    std::ifstream page(ERRORS_PAGE);
    if (!page) {
        throw std::runtime_error("there is no " ERRORS_PAGE);
    }
    std::vector<std::pair<std::string, std::string>> rows;
    bool inside = false;
    const std::regex cells(R"(\| (.*?) \| (.*?) \|.*)");
    for (std::string line; std::getline(page, line);) {
        std::smatch match;
        if (line.rfind("| " + header, 0) == 0) {
            inside = true;
        } else if (line.rfind('|', 0) != 0) {
            inside = false;
        } else if (inside && std::regex_match(line, match, cells)) {
            rows.emplace_back(match[1], match[2]);
        }
    }
    return rows;
}

/// What stands between the backticks of a cell that holds nothing else.
std::string Code(const std::string& cell) {
    if (cell.size() < 2 || cell.front() != '`' || cell.find('`', 1) != cell.size() - 1) {
        throw std::runtime_error("not one piece of code: " + cell);
    }
    return cell.substr(1, cell.size() - 2);
}

std::string Replaced(const std::string& text, const char* pattern, const char* by) {
    return std::regex_replace(text, std::regex(pattern), by);
}

} // namespace

bool ErrorRow::Means(const std::string& thrownType, const std::string& thrownMessage) const {
    const std::string escaped = Replaced(message, R"([.*+?^$(){}\[\]|\\])", R"(\$&)");
    const std::string pattern = Replaced(Replaced(escaped, "⟨.*?⟩", R"([^]*)"), "↵", "\n");
    return thrownType == type && std::regex_match(thrownMessage, std::regex(pattern));
}

std::vector<ErrorRow> ErrorRows() {
    std::vector<ErrorRow> rows;
    for (const auto& [message, type] : Rows("Message |")) {
        rows.push_back({Code(message), Code(type)});
    }
    return rows;
}

std::vector<CodeRow> CodeRows() {
    std::vector<CodeRow> rows;
    for (const auto& [code, text] : Rows("Code |")) {
        rows.push_back({std::stoi(code), Code(text)});
    }
    return rows;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
