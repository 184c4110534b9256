#pragma once

#include "support/CleanTest.h"
#include "support/Simulator.h"
#include "support/TavoProcess.h"

#include <memory>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

/// A test in which tavo, which must leave no temporary file, talks to a simulator of its own.
class SimulatorTest : public TavoRemotingLib::Testing::CleanTest {
protected:
    void SetUp() override {
        CleanTest::SetUp();
        simulator = std::make_unique<TavoRemotingLib::Testing::Simulator>(Folder());
        server = simulator->Address();
    }
    void TearDown() override {
        simulator.reset();
        CleanTest::TearDown();
    }

    /// What the simulator knows of payload P1.
    Json::Value Payload() const {
        return simulator->Payload("P1");
    }

    std::unique_ptr<TavoRemotingLib::Testing::Simulator> simulator;
    std::string server;
};

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
