#pragma once

#include "Outcomes.h"

#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A fault's rows as they should stand in docs/faults.md.
std::string RowsOf(const TavoSimulator::Fault& fault, const std::vector<Outcome>& outcomes);

/// The rows that do stand there for the fault of this name; empty when there are none.
std::string RowsInPage(const std::string& fault);

/// All names of faults in the page and in the catalogue, in order, each group's behind its heading.
std::vector<std::string> NamesInPage();
std::vector<std::string> NamesInCatalogue();

/// Writes the page anew: what stands before its first group stays, then come the groups with their
/// rows.
void WritePage(const std::vector<std::string>& rowsOfCatalogue);

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
