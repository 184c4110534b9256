#include "support/CleanTest.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

/// Asked once, before a test has changed TMPDIR.
const std::string& BaseFolder() {
    static const std::string folder = ::testing::TempDir();
    return folder;
}

std::size_t OpenDescriptors() {
    return CountEntries("/proc/self/fd");
}

} // namespace

std::size_t CountEntries(const std::string& path) {
    const std::filesystem::directory_iterator entries(path);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

void CleanTest::SetUp() {
    std::string pattern = BaseFolder() + "tavo-test-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    tempFolder = folder + "/tmp";
    std::filesystem::create_directory(tempFolder);
    setenv("TMPDIR", tempFolder.c_str(), 1);
    for (const char* const name :
         {"http_proxy", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
        unsetenv(name);
    }
    descriptors = OpenDescriptors();
}

void CleanTest::TearDown() {
    EXPECT_EQ(OpenDescriptors(), descriptors) << "open descriptors were left or lost";
    EXPECT_EQ(CountEntries(tempFolder), 0U) << "temporary files were left";
    std::filesystem::remove_all(folder);
}

std::string CleanTest::MakeFile(const std::string& name, const std::string& content) const {
    const std::string path = folder + "/" + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
