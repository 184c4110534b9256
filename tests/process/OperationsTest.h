#pragma once

#include "HalcyrREST/Operations.h"
#include "support/CapturingLogger.h"
#include "support/CleanTest.h"
#include "support/ScriptedServer.h"

#include <gtest/gtest.h>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A test of every operation under some hardship of the process; see CleanTest for what may be
/// left.
class OperationsTest : public CleanTest {
protected:
    void SetUp() override {
        CleanTest::SetUp();
        file = MakeFile("f.json", std::string(20000, ' ') + "\"zone\":1");
    }

    /// A script that satisfies the operation.
    static Script Good(const Operation& operation) {
        return Reply(OkReply(operation.ReplyBody()));
    }

    /// Calls the operation; a failure is the test's.
    void ExpectWorks(const Operation& operation, const ScriptedServer& server) {
        HalcyrREST client(server.Address(), logger, false);
        EXPECT_NO_THROW(operation.call(client, "P1", file)) << operation.name;
    }

    CapturingLogger logger;
    std::string file;
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
