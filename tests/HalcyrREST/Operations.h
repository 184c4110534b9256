#pragma once

#include <TavoRemotingLib/HalcyrREST.h>

#include <functional>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// One of the client's operations that talk to the server.
struct Operation {
    std::string name;
    std::string label; ///< in messages about the status line
    std::string operation;
    std::string further; ///< parameters behind the identifier
    bool isUpload;
    std::function<void(HalcyrREST& client, const std::string& id, const std::string& file)> call;

    std::string Target(const std::string& id) const {
        return "/xp?op=" + operation + "&id=" + id + further;
    }
    /// The body of a reply that satisfies it.
    std::string ReplyBody() const {
        return operation == "poll" ? R"({"shutdown":true})" : "OK";
    }
};

/// All of them; those of one name and several parameter lists are there once for each.
std::vector<Operation> Operations();

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
