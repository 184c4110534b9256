#include "HalcyrREST/ClientTest.h"
#include "HalcyrREST/Operations.h"

#include <algorithm>
#include <future>
#include <sstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

constexpr std::size_t threadCount = 16;

class ClientThreads : public ClientTest {
protected:
    void SetUp() override {
        ClientTest::SetUp();
        file = MakeFile("f.json", std::string(20000, ' ') + "\"zone\":1");
    }

    /// One thread's calls: every operation, each thread beginning with another one, under an
    /// identifier of its own. Returns the messages of those that threw.
    std::vector<std::string> Call(HalcyrREST& client, std::size_t thread) const {
        const std::vector<Operation> operations = Operations();
        std::vector<std::string> messages;
        for (std::size_t i = 0; i < operations.size(); ++i) {
            try {
                operations[(thread + i) % operations.size()].call(
                    client, "&T" + std::to_string(thread), file);
            } catch (const std::runtime_error& e) {
                messages.emplace_back(e.what());
            }
        }
        return messages;
    }

    /// What may differ between two runs is taken out of the text.
    static std::string Normal(const std::string& text, const ScriptedServer& server) {
        std::string normal = text;
        if (normal.find("POST") == 0) {
            const std::string path = FormParts(text).at(1).body;
            normal = Replaced(normal, FormBoundary(text), "BOUNDARY");
            normal = Replaced(normal, path, "PATH");
            normal = Replaced(normal, path.substr(path.rfind('/') + 1), "NAME");
        }
        return Replaced(normal, server.Address(), "SERVER");
    }

    struct Outcome {
        std::vector<std::string> requests;
        std::vector<std::string> messages;
        std::vector<std::string> logged;
    };

    /// Lets each thread make its calls, at once or one after the other, on one client and logger.
    Outcome Run(std::launch policy) const {
        // No reply satisfies every operation: this one makes those of the switches throw.
        const ScriptedServer server(OkReply(R"({"shutdown":true})"));
        CapturingLogger shared({7, 8});
        HalcyrREST client(server.Address(), shared, false);
        std::vector<std::future<std::vector<std::string>>> threads;
        for (std::size_t thread = 0; thread < threadCount; ++thread) {
            threads.push_back(std::async(policy, [&, thread] { return Call(client, thread); }));
        }
        Outcome outcome;
        for (auto& thread : threads) {
            for (const std::string& message : thread.get()) {
                outcome.messages.push_back(Normal(message, server));
            }
        }
        for (const std::string& request : server.Requests()) {
            outcome.requests.push_back(Normal(request, server));
        }
        outcome.logged = RequestLines(Normal(shared.Text(), server));
        std::sort(outcome.requests.begin(), outcome.requests.end());
        std::sort(outcome.logged.begin(), outcome.logged.end());
        return outcome;
    }

    static std::vector<std::string> RequestLines(const std::string& log) {
        std::istringstream in(log);
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) {
            if (line.find("HTTP GET ") == 0 || line.find("HTTP POST ") == 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }

private:
    std::string file;
};

TEST_F(ClientThreads, ManyAtOnceDoWhatTheyDoOneAfterTheOther) {
    const Outcome alone = Run(std::launch::deferred);
    const Outcome together = Run(std::launch::async);
    EXPECT_EQ(alone.requests.size(), threadCount * Operations().size());
    EXPECT_EQ(alone.logged.size(), threadCount * Operations().size());
    EXPECT_FALSE(alone.messages.empty());
    for (const std::string& message : alone.messages) {
        EXPECT_EQ(message.find("Server operation returned '{\"shutdown\":true}' for "
                               "http://SERVER/xp?op=pwr&id=%26T"),
                  0U)
            << message;
    }
    EXPECT_EQ(together.requests, alone.requests);
    EXPECT_EQ(together.messages, alone.messages);
    EXPECT_EQ(together.logged, alone.logged);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
