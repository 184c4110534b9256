#include "FaultPage.h"

#include <cstdlib>
#include <future>
#include <map>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using TavoSimulator::Fault;

/// With UPDATE=1 in the environment, docs/faults.md is written anew instead of compared: run the
/// whole program so after a change, and look at what changed in the page.
class Update : public ::testing::Environment {
public:
    static bool Asked() {
        return std::getenv("UPDATE") != nullptr;
    }

    static std::map<std::string, std::string>& Rows() {
        static std::map<std::string, std::string> rows;
        return rows;
    }

    void TearDown() override {
        if (!Asked()) {
            return;
        }
        std::vector<std::string> all;
        for (const Fault& fault : TavoSimulator::FaultCatalogue()) {
            ASSERT_EQ(Rows().count(fault.name), 1U) << "run the whole program";
            all.push_back(Rows()[fault.name]);
        }
        WritePage(all);
    }
};

const ::testing::Environment* const update = ::testing::AddGlobalTestEnvironment(new Update);

class FaultOutcome : public ::testing::TestWithParam<const Fault*> {};

std::vector<const Fault*> AllFaults() {
    std::vector<const Fault*> faults;
    for (const Fault& fault : TavoSimulator::FaultCatalogue()) {
        faults.push_back(&fault);
    }
    return faults;
}

std::string TestName(const ::testing::TestParamInfo<const Fault*>& info) {
    std::string name = info.param->name;
    for (char& character : name) {
        character = character == '-' ? '_' : character;
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Of, FaultOutcome, ::testing::ValuesIn(AllFaults()), TestName);

TEST_P(FaultOutcome, IsAsThePageTells) {
    const Fault& fault = *GetParam();
    const std::string rows = RowsOf(fault, Victim(fault).Outcomes());
    if (Update::Asked()) {
        Update::Rows()[fault.name] = rows;
    } else {
        EXPECT_EQ(RowsInPage(fault.name), rows);
    }
}

std::vector<Operation> AllButPolls() {
    std::vector<Operation> operations;
    for (const Operation& operation : Operations()) {
        if (operation.operation != "poll") {
            operations.push_back(operation);
        }
    }
    return operations;
}

/// What the page tells of a GET and of an upload holds for all of them. Only a switch looks at its
/// reply's body, and refuses what is not "OK".
TEST_P(FaultOutcome, OfEveryOperationIsThatOfItsKind) {
    Victim victim(*GetParam());
    const std::vector<Outcome> told = victim.Outcomes();
    const std::vector<Operation> operations = AllButPolls();
    // All at once, since much of their time is waiting.
    std::vector<std::future<Outcome>> outcomes;
    outcomes.reserve(operations.size());
    for (const Operation& operation : operations) {
        outcomes.push_back(std::async(std::launch::async, &Victim::OutcomeOf, &victim, operation));
    }
    for (std::size_t i = 0; i < operations.size(); ++i) {
        const Operation& operation = operations[i];
        const Outcome& kind = told.at(operation.isUpload ? 2 : 0);
        const Outcome outcome = outcomes[i].get();
        if (operation.operation == "pwr" && kind.type.empty() && !outcome.type.empty()) {
            EXPECT_EQ(outcome.type, "std::runtime_error") << operation.name;
            EXPECT_EQ(outcome.text.rfind("`Server operation returned '", 0), 0U) << outcome.text;
            continue;
        }
        EXPECT_EQ(outcome.type, kind.type) << operation.name;
        // An upload so small that it comes with its head may be struck as a GET is.
        if (!kind.type.empty() && outcome.text != told.at(0).text) {
            EXPECT_EQ(outcome.text, kind.text) << operation.name;
        }
    }
}

TEST(FaultPage, HasEveryFaultOfTheCatalogueInItsOrder) {
    if (!Update::Asked()) {
        EXPECT_EQ(NamesInPage(), NamesInCatalogue());
    }
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
