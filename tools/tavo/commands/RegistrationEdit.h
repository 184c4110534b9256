#pragma once

#include <TavoRemotingLib/HalcyrREST.h>

#include <string>
#include <vector>

namespace Brenmoor {
namespace Tavo {

/// What the command line changes of a registration document, as it stands there. Each function
/// throws UsageError for a text that is not understood.
struct RegistrationEdits {
    std::vector<std::string> members;   ///< "tag=ctd"
    std::vector<std::string> interface; ///< "swver=3.2"
    std::vector<std::string> hardware;  ///< "2.serial=000418", numbered from 1
    std::vector<std::string> dropped;   ///< "2"
};

/// Sets the six members that the record has.
void EditRecord(const RegistrationEdits& edits,
                TavoRemotingLib::HalcyrREST::PayloadRegistration& record);

/// The document with its interface edited; the same text when there is nothing to edit.
std::string EditInterface(const RegistrationEdits& edits, const std::string& document);

/// The document with its hardware edited. All numbers are those before anything is dropped, and
/// one more than the last adds an entry.
std::string EditHardware(const RegistrationEdits& edits, const std::string& document);

} // namespace Tavo
} // namespace Brenmoor
