// A file that changes while it is sent.

#include "Clocks.h"
#include "OperationsTest.h"
#include "support/Form.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <optional>
#include <thread>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using namespace std::chrono_literals;

/// Whether this process has the file open.
bool IsOpen(const std::string& path) {
    for (const auto& descriptor : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closedMeanwhile;
        if (std::filesystem::read_symlink(descriptor, closedMeanwhile) == path) {
            return true;
        }
    }
    return false;
}

/// Sends a file that is larger than all buffers. It changes when libcurl has opened it, and the
/// server reads its content only then.
class ChangingFile : public OperationsTest {
protected:
    void SetUp() override {
        OperationsTest::SetUp();
        content.resize(16777216, 'x');
        // As the system shows it, also where the folder is behind a symbolic link.
        file = std::filesystem::canonical(MakeFile("large", content));
        server.emplace(Script{ReadHead(), Hold(), ReadRequest(), Send(OkReply("OK"))});
    }
    void TearDown() override {
        server.reset();
        OperationsTest::TearDown();
    }

    /// Returns libcurl's code.
    template <typename Change>
    CURLcode Upload(const Change& change) {
        HalcyrREST client(server->Address(), logger, false);
        auto upload = std::async(std::launch::async, [&] {
            try {
                client.SendFileToShore("P1", file, "");
            } catch (const CurlUtils::CurlEasyException& e) {
                return e.code;
            }
            return CURLE_OK;
        });
        while (!IsOpen(file) && upload.wait_for(0s) != std::future_status::ready) {
            std::this_thread::yield();
        }
        change();
        server->Release();
        return upload.get();
    }

    std::optional<ScriptedServer> server;
    std::string content;
};

TEST_F(ChangingFile, ThatVanishesIsSentWhole) {
    EXPECT_EQ(Upload([&] { std::filesystem::remove(file); }), CURLE_OK);
    EXPECT_TRUE(FormParts(server->OnlyRequest()).at(0).body == content);
}

/// libcurl sends more than it has announced, which servers take for a form that is cut off.
TEST_F(ChangingFile, ThatGrowsIsSentBeyondTheAnnouncedLength) {
    EXPECT_EQ(Upload([&] { std::ofstream(file, std::ios::app) << "more"; }), CURLE_OK);
    const std::string request = server->OnlyRequest();
    EXPECT_TRUE(FormParts(request).at(0).body == content + "more");
    const std::string head = RequestHead(request);
    const std::string name = "Content-Length: ";
    const std::size_t announced = std::stoul(head.substr(head.find(name) + name.size()));
    EXPECT_EQ(request.size(), head.size() + 2 + announced + 4);
}

/// libcurl sends no more than there is and waits for the reply, the server for the rest.
TEST_F(ChangingFile, ThatShrinksEndsWithTheLimit) {
    const Clocks clocks(60);
    EXPECT_EQ(Upload([&] { std::filesystem::resize_file(file, content.size() / 2); }),
              CURLE_OPERATION_TIMEDOUT);
    EXPECT_LT(server->OnlyRequest().size(), content.size());
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
