#pragma once

#include <TavoRemotingLib/HalcyrREST.h>

#include <json/value.h>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

/// One parse with Json::Reader.
Json::Value Parse(const std::string& text);

/// The commands of a poll's reply, taken from one parse of it; the position is read, too.
std::vector<HalcyrREST::RemoteCommand> ReadPoll(const std::string& body);

/// The same as the contract has it: each command and the position are turned back to text, and that
/// text is parsed again.
std::vector<HalcyrREST::RemoteCommand> ReadPollByContract(const std::string& body);

/// The list "hardware" of a document, taken from one parse of it.
std::vector<HalcyrREST::PRHardware> ReadHardware(const std::string& document);

/// The same as the contract has it, with each entry turned back to text.
std::vector<HalcyrREST::PRHardware> ReadHardwareByContract(const std::string& document);

/// The document with that list, written after one parse of it.
std::string WriteHardware(const std::string& document,
                          const std::vector<HalcyrREST::PRHardware>& list);

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
