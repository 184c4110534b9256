#include "FaultPage.h"

#include <cctype>
#include <fstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using TavoSimulator::Fault;

constexpr char groupMark[] = "## ";
constexpr char rowMark[] = "| ";
constexpr char tableHead[] = "\n| Fault | What happens | Call | Exception | Message, or what the "
                             "caller gets |\n|---|---|---|---|---|\n";

bool Begins(const std::string& line, const std::string& beginning) {
    return line.compare(0, beginning.size(), beginning) == 0;
}

std::vector<std::string> PageLines() {
    std::ifstream page(FAULTS_PAGE);
    std::vector<std::string> lines;
    for (std::string line; std::getline(page, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The name in the first cell of a row; empty for other lines and for rows that go on.
std::string NameIn(const std::string& line) {
    const std::string mark = "| `";
    return Begins(line, mark) ? line.substr(mark.size(), line.find('`', mark.size()) - mark.size())
                              : "";
}

std::string Heading(std::string group) {
    group[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(group[0])));
    return groupMark + group;
}

std::string Cell(std::string text) {
    for (std::size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) {
        text.insert(at, "\\");
    }
    return text + " | ";
}

/// The calls of the outcomes, those of equal ones in one place.
std::vector<Outcome> Merged(const std::vector<Outcome>& outcomes) {
    std::vector<Outcome> merged;
    for (const Outcome& outcome : outcomes) {
        bool known = false;
        for (Outcome& other : merged) {
            if (other.type == outcome.type && other.text == outcome.text) {
                other.call += ", " + outcome.call;
                known = true;
            }
        }
        if (!known) {
            merged.push_back(outcome);
        }
    }
    if (merged.size() == 1) {
        merged.front().call = "any";
    }
    return merged;
}

} // namespace

std::string RowsOf(const Fault& fault, const std::vector<Outcome>& outcomes) {
    std::string rows;
    for (const Outcome& outcome : Merged(outcomes)) {
        std::string row = rowMark;
        row +=
            rows.empty() ? Cell("`" + std::string(fault.name) + "`") + Cell(fault.summary) : "| | ";
        row += Cell(outcome.call) + Cell(outcome.type.empty() ? "–" : "`" + outcome.type + "`") +
               Cell(outcome.text);
        rows += row.substr(0, row.size() - 1) + "\n";
    }
    return rows;
}

std::string RowsInPage(const std::string& fault) {
    std::string rows;
    bool inside = false;
    for (const std::string& line : PageLines()) {
        const std::string name = NameIn(line);
        inside = Begins(line, rowMark) && (name.empty() ? inside : name == fault);
        rows += inside ? line + "\n" : "";
    }
    return rows;
}

std::vector<std::string> NamesInCatalogue() {
    std::vector<std::string> names;
    std::string group;
    for (const Fault& fault : TavoSimulator::FaultCatalogue()) {
        if (group != fault.group) {
            group = fault.group;
            names.push_back(Heading(group));
        }
        names.emplace_back(fault.name);
    }
    return names;
}

std::vector<std::string> NamesInPage() {
    std::vector<std::string> names;
    for (const std::string& line : PageLines()) {
        if (Begins(line, groupMark)) {
            names.push_back(line);
        } else if (!NameIn(line).empty()) {
            names.push_back(NameIn(line));
        }
    }
    return names;
}

void WritePage(const std::vector<std::string>& rowsOfCatalogue) {
    std::string text;
    for (const std::string& line : PageLines()) {
        if (Begins(line, groupMark)) {
            break;
        }
        text += line + "\n";
    }
    const auto& catalogue = TavoSimulator::FaultCatalogue();
    std::string group;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        if (group != catalogue[i].group) {
            text += group.empty() ? "" : "\n";
            group = catalogue[i].group;
            text += Heading(group) + "\n" + tableHead;
        }
        text += rowsOfCatalogue[i];
    }
    std::ofstream(FAULTS_PAGE) << text;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
