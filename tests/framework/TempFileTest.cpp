#include <MirrinFramework/TempFile.h>

#include "Bytes.h"
#include "support/CleanTest.h"
#include "support/ResourceLimit.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>
#include <unistd.h>

namespace Brenmoor {
namespace MirrinFramework {

namespace {

class TempFileTest : public TavoRemotingLib::Testing::CleanTest {};

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Expects `action` to fail with that system error and a text that says what was done to which
/// file.
template <typename Action>
void ExpectSystemError(const Action& action, int error, const std::string& message) {
    try {
        action();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::system_error& e) {
        EXPECT_EQ(e.code(), std::error_code(error, std::generic_category()));
        EXPECT_EQ(e.what(), message + ": " + std::generic_category().message(error));
    }
}

TEST_F(TempFileTest, LiesInTheTemporaryFolderUnderARandomName) {
    std::set<std::string> names;
    for (int i = 0; i < 20; ++i) {
        const TempFile file(10);
        const std::string prefix = TempFolder() + "/mirrin-";
        EXPECT_EQ(file.GetName().substr(0, prefix.size()), prefix);
        EXPECT_EQ(file.GetName().size(), prefix.size() + 10);
        names.insert(file.GetName());
    }
    EXPECT_EQ(names.size(), 20U);
}

TEST_F(TempFileTest, LiesInTmpWithoutAFolderInTheEnvironment) {
    unsetenv("TMPDIR");
    EXPECT_EQ(TempFile(10).GetName().substr(0, 12), "/tmp/mirrin-");
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(TempFile(10).GetName().substr(0, 12), "/tmp/mirrin-");
}

TEST_F(TempFileTest, BelongsToItsOwnerAlone) {
    const TempFile file(10);
    EXPECT_EQ(std::filesystem::status(file.GetName()).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(TempFileTest, IsNotHandedOnToOtherPrograms) {
    const int next = dup(0);
    close(next);
    const TempFile file(10);
    // The lowest free descriptor is the file's.
    EXPECT_EQ(fcntl(next, F_GETFD), FD_CLOEXEC);
}

TEST_F(TempFileTest, HoldsWhatIsWritten) {
    TempFile file(10);
    file.Write(Bytes(std::string("a\0b", 3)));
    file.Write(ByteArray());
    file.Write(Bytes("c"));
    file.Close();
    EXPECT_EQ(Content(file.GetName()), std::string("a\0bc", 4));
}

TEST_F(TempFileTest, IsRemovedWhenDestroyed) {
    std::string name;
    {
        const TempFile file(10);
        name = file.GetName();
        EXPECT_TRUE(std::filesystem::exists(name));
    }
    EXPECT_FALSE(std::filesystem::exists(name));
}

TEST_F(TempFileTest, MayBeRemovedByOthersBefore) {
    const TempFile file(10);
    std::filesystem::remove(file.GetName());
}

TEST_F(TempFileTest, SecondCloseDoesNothing) {
    TempFile file(10);
    file.Close();
    file.Close();
}

TEST_F(TempFileTest, WriteBehindCloseFails) {
    TempFile file(10);
    file.Close();
    ExpectSystemError([&] { file.Write(Bytes("x")); }, EBADF,
                      "Failed to write temporary file '" + file.GetName() + "'");
}

TEST_F(TempFileTest, MissingFolderIsNamed) {
    const std::string missing = Folder() + "/none";
    setenv("TMPDIR", missing.c_str(), 1);
    ExpectSystemError([] { const TempFile file(0); }, ENOENT,
                      "Failed to create temporary file '" + missing + "/mirrin-'");
}

TEST_F(TempFileTest, ExistingFileIsNeverTaken) {
    // Without random characters there is one name only.
    const TempFile first(0);
    ExpectSystemError([] { const TempFile second(0); }, EEXIST,
                      "Failed to create temporary file '" + first.GetName() + "'");
    EXPECT_TRUE(std::filesystem::exists(first.GetName()));
}

TEST_F(TempFileTest, FullDiskIsToldAndTheFileRemoved) {
    const TavoRemotingLib::Testing::SmallFiles limit(1000);
    TempFile file(10);
    ExpectSystemError([&] { file.Write(Bytes(std::string(1001, 'x'))); }, EFBIG,
                      "Failed to write temporary file '" + file.GetName() + "'");
}

} // namespace

} // namespace MirrinFramework
} // namespace Brenmoor
