#pragma once

#include <TavoRemotingLib/HalcyrREST.h>

#include <functional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

/// What there is to work with.
struct Surroundings {
    HalcyrREST& client;
    std::string server; ///< where it is, as the client knows it
    std::string file;   ///< a registration document
    std::string document;
    MirrinFramework::Logger& logger;
    unsigned limitSeconds; ///< for a run and two good ones behind it
};

/// Something of the library that is called once whole and once for each call that can fail in it.
struct Subject {
    std::string name;
    std::string replyBody; ///< that satisfies it; empty when it exchanges nothing
    std::function<void(const Surroundings& with)> call;
};

/// Every operation, transfer, record and function of the library.
std::vector<Subject> Subjects();

/// Subjects that do what none may do, each named by its fault.
std::vector<Subject> FaultySubjects();

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor
