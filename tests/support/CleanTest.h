#pragma once

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// A test that must leave nothing behind: no open descriptor, no temporary file. It has a folder of
/// its own for TMPDIR, and no proxy in its environment.
class CleanTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Creates a file for the test, outside TMPDIR, and returns its path.
    std::string MakeFile(const std::string& name, const std::string& content) const;

    /// The folder for such files; it is removed behind the test.
    const std::string& Folder() const {
        return folder;
    }
    const std::string& TempFolder() const {
        return tempFolder;
    }

private:
    std::string folder;
    std::string tempFolder;
    std::size_t descriptors = 0;
};

/// The number of entries in a folder.
std::size_t CountEntries(const std::string& path);

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
