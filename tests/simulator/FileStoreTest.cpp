#include "model/FileStore.h"
#include "support/Wire.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

TEST(SafeName, StaysInsideTheFolder) {
    const std::pair<std::string, std::string> names[] = {
        {"x.bin", "x.bin"},
        {"../../x", "x"},
        {"/etc/passwd", "etc_passwd"},
        {"a/b/../c", "a_b_c"},
        {"..\\..\\x", "x"},
        {"", "unnamed"},
        {"/", "unnamed"},
        {".", "unnamed"},
        {"..", "unnamed"},
        {".hidden", "_hidden"},
        {"...", "_.."},
        {"a b\n;rm", "a_b__rm"},
        {std::string("a\0b", 3), "a_b"},
        {"\xc3\xa9.txt", "__.txt"},
        {std::string(300, 'a') + ".bin", std::string(116, 'a') + ".bin"},
        {"a." + std::string(119, 'b'), "_" + std::string(119, 'b')},
    };
    for (const auto& [wanted, safe] : names) {
        EXPECT_EQ(SafeName(wanted), safe) << wanted;
        EXPECT_EQ(SafeName(safe), safe) << wanted;
    }
}

TEST(FileStore, KeepsTwoUploadsOfOneNameApart) {
    const TempFolder folder;
    const FileStore store(folder.path + "/deep/data");
    std::vector<std::string> names;
    for (const char* const content : {"first", "second", "third"}) {
        FileStore::Upload upload(store);
        upload.Stream() << content;
        std::uintmax_t size = 0;
        names.push_back(upload.Keep("../log.txt", size));
        EXPECT_EQ(size, std::string(content).size());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"log.txt", "log-2.txt", "log-3.txt"}));
    EXPECT_EQ(Entries(folder.path + "/deep/data"),
              (std::vector<std::string>{"log-2.txt", "log-3.txt", "log.txt"}));
    EXPECT_EQ(ReadFile(store.Find("log.txt").string()), "first");
    EXPECT_EQ(ReadFile(store.Find("log-3.txt").string()), "third");
}

TEST(FileStore, AnUploadThatIsNotKeptLeavesNothing) {
    const TempFolder folder;
    const FileStore store(folder.path);
    {
        FileStore::Upload upload(store);
        upload.Stream() << "half";
    }
    EXPECT_EQ(Entries(folder.path), std::vector<std::string>{});
}

TEST(FileStore, FindsOnlyPlainFilesOfItsOwn) {
    const TempFolder folder;
    WriteFile(folder.path + "/secret", "s");
    const FileStore store(folder.path + "/data");
    std::filesystem::create_symlink(folder.path + "/secret", folder.path + "/data/link");
    std::filesystem::create_directory(folder.path + "/data/dir");
    WriteFile(folder.path + "/data/file", "f");
    EXPECT_EQ(store.Find("file"), store.Folder() / "file");
    for (const char* const name : {"../secret", "link", "dir", "", ".", "..", "missing", "/file"}) {
        EXPECT_EQ(store.Find(name), "") << name;
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
