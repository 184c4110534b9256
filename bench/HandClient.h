#pragma once

#include "Client.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Bench {

/// What all hand-written clients have in common: they compose the same targets as the library does,
/// with values that need no escape, and read a poll's reply by one parse.
class HandClient : public Client {
public:
    std::string RunScript(const std::string& command) override;
    std::size_t Poll(const std::string& id) override;
    void UploadContent(const std::string& content) override;
    void UploadFile(const std::string& fileName, std::size_t size) override;

private:
    virtual std::string Get(const std::string& target) = 0;
    virtual void PostContent(const std::string& target, const std::string& content) = 0;
    virtual void PostFile(const std::string& target, const std::string& fileName) = 0;
};

/// Throws unless the status is 200.
void ExpectStatusOK(long status);

} // namespace Bench
} // namespace TavoRemotingLib
} // namespace Brenmoor
