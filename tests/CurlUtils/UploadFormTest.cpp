#include "CurlUtils/UploadForm.h"
#include "CurlUtils/TransferTest.h"

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using CurlUtils::FormAddFileCopyFromString;
using Lines = std::vector<std::string>;

std::string FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

class UploadForm : public TransferTest {
protected:
    void TearDown() override {
        CurlUtils::FreeUpload(first, nullptr);
        TransferTest::TearDown();
    }

    curl_httppost* first = nullptr;
    curl_httppost* last = nullptr;
};

TEST_F(UploadForm, HasThreePartsInTheirOrder) {
    const FormAddFileCopyFromString file(first, last, "name", "abc", false);
    EXPECT_EQ(interposer.Calls(),
              (Lines{"curl_formadd file 10 " + file.GetName(),
                     "curl_formadd filename 4 " + file.GetName(), "curl_formadd submit 4 send"}));
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first->name, "file");
    EXPECT_EQ(first->next->next, last);
    EXPECT_STREQ(last->name, "submit");
    EXPECT_EQ(last->next, nullptr);
}

TEST_F(UploadForm, TemporaryFileHoldsExactlyTheContent) {
    const std::string content("a\0b\r\n\xFF", 6);
    const FormAddFileCopyFromString file(first, last, "name", content, false);
    EXPECT_EQ(FileBytes(file.GetName()), content);
}

TEST_F(UploadForm, EmptyContentIsAnEmptyFile) {
    const FormAddFileCopyFromString file(first, last, "name", "", false);
    EXPECT_EQ(std::filesystem::file_size(file.GetName()), 0U);
}

TEST_F(UploadForm, TemporaryFileIsClosedBeforeTheTransfer) {
    const std::size_t open = CountEntries("/proc/self/fd");
    const FormAddFileCopyFromString file(first, last, "name", "abc", false);
    EXPECT_EQ(CountEntries("/proc/self/fd"), open);
}

TEST_F(UploadForm, TemporaryFileGoesWithTheObject) {
    std::string path;
    {
        const FormAddFileCopyFromString file(first, last, "name", "abc", false);
        path = file.GetName();
        EXPECT_TRUE(std::filesystem::exists(path));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(UploadForm, TemporaryNameHasTenRandomCharacters) {
    const FormAddFileCopyFromString file(first, last, "name", "abc", false);
    const std::string start = TempFolder() + "/mirrin-";
    ASSERT_EQ(file.GetName().size(), start.size() + 10);
    EXPECT_EQ(file.GetName().substr(0, start.size()), start);
    for (const char character : file.GetName().substr(start.size())) {
        EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(character))) << character;
    }
}

TEST_F(UploadForm, PathIsTakenAsItIsWritten) {
    const std::string path = MakeFile("given", "theirs");
    const std::string written = Folder() + "//./given";
    {
        const FormAddFileCopyFromString file(first, last, "name", written, true);
        EXPECT_EQ(interposer.Calls(),
                  (Lines{"curl_formadd file 10 " + written, "curl_formadd filename 4 " + written,
                         "curl_formadd submit 4 send"}));
    }
    EXPECT_EQ(FileBytes(path), "theirs");
}

TEST_F(UploadForm, PathEndsAtItsFirstZeroByte) {
    const FormAddFileCopyFromString file(first, last, "name", std::string("/a\0/b", 5), true);
    EXPECT_EQ(interposer.CallsTo("curl_formadd file"),
              (Lines{"curl_formadd file 10 /a", "curl_formadd filename 4 /a"}));
}

TEST_F(UploadForm, OwnFileStaysEmptyWhenAPathIsGiven) {
    const FormAddFileCopyFromString file(first, last, "name", "/some/path", true);
    EXPECT_EQ(std::filesystem::file_size(file.GetName()), 0U);
}

TEST_F(UploadForm, NameIsNotInTheForm) {
    const FormAddFileCopyFromString file(first, last, "needle", "abc", false);
    for (const std::string& call : interposer.Calls()) {
        EXPECT_EQ(call.find("needle"), std::string::npos) << call;
    }
}

TEST_F(UploadForm, EachRefusedPartEndsTheFormThere) {
    for (int nth = 1; nth <= 3; ++nth) {
        const std::size_t before = interposer.Calls().size();
        interposer.Fail("curl_formadd", 1, nth);
        ExpectFormError([&] { FormAddFileCopyFromString(first, last, "name", "abc", false); }, 1);
        EXPECT_EQ(interposer.Calls().size() - before, static_cast<std::size_t>(nth));
        EXPECT_EQ(CountEntries(TempFolder()), 0U);
    }
}

TEST_F(UploadForm, PartsOfSeveralFormsFollowOneAnother) {
    const FormAddFileCopyFromString one(first, last, "name", "abc", false);
    const curl_httppost* const end = last;
    const FormAddFileCopyFromString two(first, last, "name", "def", false);
    EXPECT_STREQ(end->next->name, "file");
    EXPECT_NE(one.GetName(), two.GetName());
}

TEST_F(UploadForm, TemporaryFileThatCannotBeMadeIsASystemError) {
    setenv("TMPDIR", (Folder() + "/none").c_str(), 1);
    try {
        const FormAddFileCopyFromString file(first, last, "name", "abc", false);
        ADD_FAILURE();
    } catch (const std::system_error& e) {
        EXPECT_EQ(e.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_EQ(interposer.Calls(), Lines{});
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
