// A process with many descriptors, a full disk, no temporary folder, little memory.

#include "OperationsTest.h"
#include "support/LowDescriptorsTaken.h"
#include "support/ResourceLimit.h"
#include "support/Throws.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <system_error>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class Surroundings : public OperationsTest {
protected:
    /// Expects a system error with that number whose text begins so, and that nothing was sent.
    template <typename Action>
    static void ExpectSystemError(const Action& action, int number, const std::string& beginning) {
        try {
            action();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::system_error& e) {
            EXPECT_EQ(e.code().value(), number) << e.what();
            EXPECT_EQ(std::string(e.what()).substr(0, beginning.size()), beginning);
        }
    }
};

TEST_F(Surroundings, With1024DescriptorsTakenEveryOperationWorks) {
    for (const Operation& operation : Operations()) {
        const ScriptedServer server(Good(operation));
        const LowDescriptorsTaken taken;
        ExpectWorks(operation, server);
    }
}

TEST_F(Surroundings, WithoutATemporaryFolderUploadsAreRefusedAndTheRestWorks) {
    for (const Operation& operation : Operations()) {
        const ScriptedServer server(Good(operation));
        HalcyrREST client(server.Address(), logger, false);
        const std::string missing = Folder() + "/none";
        setenv("TMPDIR", missing.c_str(), 1);
        if (operation.isUpload) {
            ExpectSystemError([&] { operation.call(client, "P1", file); }, ENOENT,
                              "Failed to create temporary file '" + missing + "/mirrin-");
            EXPECT_EQ(server.Requests().size(), 0U);
        } else {
            operation.call(client, "P1", file);
        }
        setenv("TMPDIR", TempFolder().c_str(), 1);
        EXPECT_NO_THROW(operation.call(client, "P1", file)) << operation.name;
    }
}

TEST_F(Surroundings, ContentBeyondTheLimitOfAFileIsRefusedAndTheNextUploadWorks) {
    const ScriptedServer server(OkReply("OK"));
    HalcyrREST client(server.Address(), logger, false);
    const std::string large(10001, 'x');
    const std::string failure = "Failed to write temporary file '" + TempFolder() + "/mirrin-";
    {
        const SmallFiles limit(10000);
        const auto refused = [&](const auto& upload) {
            ExpectSystemError(upload, EFBIG, failure);
        };
        refused([&] { client.RespondToCommand("P1", "t", large, true, true); });
        refused([&] { client.SendRawPacketToShore("P1", large); });
        HalcyrREST::PayloadRegistration registration;
        registration.description = large;
        refused([&] { client.RegisterPayload("P1", file, registration, "h"); });
        refused([&] { client.RegisterPayloadWithContent("P1", large, ""); });
        EXPECT_EQ(server.Requests().size(), 0U);
        client.SendRawPacketToShore("P1", "small");
        client.SendFileToShore("P1", file, "");
    }
    client.SendRawPacketToShore("P1", large);
    EXPECT_EQ(server.Requests().size(), 3U);
}

bool Write(const std::string& path, const std::string& text) {
    return (std::ofstream(path) << text << std::flush).good();
}

/// Lets a user mount. One that is in no map cannot create files.
bool BecomeMounter() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    return unshare(CLONE_NEWUSER) == 0 && Write("/proc/self/setgroups", "deny") &&
           Write("/proc/self/uid_map", user + " " + user + " 1") &&
           Write("/proc/self/gid_map", group + " " + group + " 1");
}

/// Mounts a disk that no other process sees.
bool MountDisk(const std::string& folder) {
    return (geteuid() == 0 || BecomeMounter()) && unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("disk", folder.c_str(), "tmpfs", 0, "size=8k") == 0;
}

/// What a process finds that has a disk of its own for its temporary files, which is full.
int UploadToFullDisk(HalcyrREST& client, const std::string& folder) {
    if (!MountDisk(folder)) {
        return 77;
    }
    try {
        client.SendRawPacketToShore("P1", std::string(100000, 'x'));
        return 1;
    } catch (const std::system_error& e) {
        const std::string beginning = "Failed to write temporary file '" + folder + "/mirrin-";
        const bool isTold = e.code().value() == ENOSPC &&
                            std::string(e.what()).substr(0, beginning.size()) == beginning;
        if (!isTold || CountEntries(folder) != 0) {
            return 2;
        }
    }
    client.SendRawPacketToShore("P1", "small");
    return CountEntries(folder) == 0 ? 0 : 3;
}

TEST_F(Surroundings, FullDiskRefusesAnUploadAndTakesTheNextThatFits) {
#ifdef TAVO_EMULATED
    GTEST_SKIP() << "an emulator is not forked";
#endif
    const ScriptedServer server(OkReply("OK"));
    HalcyrREST client(server.Address(), logger, false);
    const pid_t child = fork();
    if (child == 0) {
        _exit(UploadToFullDisk(client, TempFolder()));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77) {
        GTEST_SKIP() << "no disk can be mounted here";
    }
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(server.Requests().size(), 1U);
}

/// The addresses that the process has.
std::size_t AddressedBytes() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(getpagesize());
}

TEST_F(Surroundings, EndlessBodyEndsInAnExceptionWhenMemoryEnds) {
#ifdef TAVO_UNLIMITED_MEMORY
    GTEST_SKIP() << "the limit means nothing here";
#endif
    for (const Operation& operation : Operations()) {
        const Script endless = {ReadRequest(), Send("HTTP/1.1 200 OK\r\n\r\n"),
                                Flood(std::string(1048576, 'x'))};
        const ScriptedServer server({endless, Good(operation)});
        HalcyrREST client(server.Address(), logger, false);
        const ResourceLimit limit(RLIMIT_AS, AddressedBytes() + 100663296);
        try {
            operation.call(client, "P1", file);
            ADD_FAILURE() << operation.name << " took it whole";
        } catch (const CurlUtils::CurlEasyException& e) {
            EXPECT_EQ(e.code, CURLE_WRITE_ERROR) << operation.name;
        }
        EXPECT_NO_THROW(operation.call(client, "P1", file)) << operation.name;
    }
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
