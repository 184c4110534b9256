#pragma once

#include "support/CleanTest.h"
#include "support/Program.h"
#include "support/ScriptedServer.h"
#include "support/Simulator.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

using Lines = std::vector<std::string>;

/// A test that runs example programs, which must leave no temporary file. EXAMPLES_FOLDER of the
/// environment names others than those of this build.
class ExampleTest : public CleanTest {
protected:
    /// What a program did, with SERVER in the place of that server's address.
    struct Outcome {
        int code;
        std::string output;
        std::string errors;
    };

    static Program Start(const std::string& example, const Lines& arguments) {
        const char* const folder = std::getenv("EXAMPLES_FOLDER");
        Lines words =
            CommandOf(std::string(folder != nullptr ? folder : EXAMPLES_FOLDER) + "/" + example);
        words.insert(words.end(), arguments.begin(), arguments.end());
        return Program(words);
    }

    static Outcome End(Program& program, const std::string& address) {
        const int code = program.Wait();
        return {code, Named(program.RestOfOutput(), address), Named(program.Errors(), address)};
    }

    /// Runs it against that server to its end.
    static Outcome Run(const std::string& example, const std::string& address,
                       const Lines& arguments) {
        Lines all = {address};
        all.insert(all.end(), arguments.begin(), arguments.end());
        Program program = Start(example, all);
        return End(program, address);
    }

    /// Expects the line that says how the program is used, and exit code 2.
    static void ExpectUsage(const std::string& example, const std::string& arguments) {
        Program program = Start(example, {});
        const Outcome outcome = End(program, "none");
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, "usage: " + example + " " + arguments + "\n");
    }

private:
    static std::string Named(std::string text, const std::string& address) {
        for (std::size_t at = text.find(address); at != std::string::npos;
             at = text.find(address)) {
            text.replace(at, address.size(), "SERVER");
        }
        return text;
    }
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
