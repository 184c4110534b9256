#pragma once

#include "Client.h"
#include "Subjects.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

/// The subjects that exchange nothing, of the client `name`.
std::vector<Subject> LocalSubjects(const std::string& name, Client& client);

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
