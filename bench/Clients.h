#pragma once

#include "Client.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

// The clients that MakeClient() knows.

std::unique_ptr<Client> MakeLibraryClient(const std::string& server);
std::unique_ptr<Client> MakeCanaryClient(const std::string& server);
std::unique_ptr<Client> MakeBareClient(const std::string& server);
std::unique_ptr<Client> MakeFileClient(const std::string& server);
std::unique_ptr<Client> MakeContractClient(const std::string& server);
std::unique_ptr<Client> MakeCurlppClient(const std::string& server);
std::unique_ptr<Client> MakePocoClient(const std::string& server);
std::unique_ptr<Client> MakeHttplibClient(const std::string& server);
std::unique_ptr<Client> MakeBeastClient(const std::string& server);

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
