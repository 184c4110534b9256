#include "registration/JsonReaders.h"

#include "support/CleanTest.h"
#include "support/Interposer.h"
#include "support/Throws.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

TEST(StringToJson, EmptyTextIsAnEmptyObject) {
    EXPECT_EQ(StringToJson(""), Json::Value(Json::objectValue));
}

TEST(StringToJson, TextOfWhiteSpaceIsAnEmptyObject) {
    EXPECT_EQ(StringToJson(" \t\r\n\v\f"), Json::Value(Json::objectValue));
}

TEST(StringToJson, BlanksAroundABracedObjectAreDropped) {
    EXPECT_EQ(StringToJson(" \n{\"a\":1}\r\n ").toStyledString(), "{\n\t\"a\" : 1\n}\n");
}

TEST(StringToJson, BareMemberListBecomesAnObject) {
    EXPECT_EQ(StringToJson("\"a\":1").toStyledString(), "{\n\t\"a\" : 1\n}\n");
}

TEST(StringToJson, ArrayIsWrappedAndRefused) {
    ExpectThrows<std::runtime_error>([] { StringToJson("[1,2]"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

TEST(StringToJson, OpeningBraceAloneIsWrappedAndRefused) {
    ExpectThrows<std::runtime_error>([] { StringToJson("{\"a\":1"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

TEST(StringToJson, ClosingBraceAloneIsWrappedAndItsRestIgnored) {
    EXPECT_EQ(StringToJson("\"a\":1}").toStyledString(), "{\n\t\"a\" : 1\n}\n");
}

TEST(StringToJson, CommentsAreDropped) {
    EXPECT_EQ(StringToJson("{ // first\n\"a\":1 /* second */}").toStyledString(),
              "{\n\t\"a\" : 1\n}\n");
}

TEST(StringToJson, TextThatIsNotJsonKeepsTheParsersList) {
    ExpectThrows<std::runtime_error>(
        [] { StringToJson("{\"a\":nope}"); },
        "* Line 1, Column 6\n  Syntax error: value, object or array expected.\n");
}

TEST(StringToJson, DeepNestingPassesTheParsersOwnException) {
    const std::string text = "\"a\":" + std::string(1001, '[') + std::string(1001, ']');
    try {
        StringToJson(text);
        ADD_FAILURE();
    } catch (const std::runtime_error&) {
        ADD_FAILURE() << "jsoncpp's exceptions are not std::runtime_error";
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "Exceeded stackLimit in readValue().");
    }
}

class FileReaders : public CleanTest {};

TEST_F(FileReaders, FileOf32768BytesIsRead) {
    const std::string content(32768, 'x');
    EXPECT_EQ(FileToString(MakeFile("limit", content)), content);
}

TEST_F(FileReaders, FileOf32769BytesIsRefused) {
    const std::string path = MakeFile("large", std::string(32769, 'x'));
    ExpectThrows<std::invalid_argument>([&] { FileToString(path); },
                                        "File cannot be larger than 32K (" + path + ")");
}

TEST_F(FileReaders, LargeFileIsRefusedUnread) {
    const std::string path = MakeFile("large", std::string(32769, 'x'));
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_NE(watch, -1);
    ASSERT_NE(inotify_add_watch(watch, path.c_str(), IN_ACCESS), -1);
    EXPECT_THROW(FileToString(path), std::invalid_argument);
    inotify_event event{};
    EXPECT_EQ(read(watch, &event, sizeof event), -1);
    EXPECT_EQ(errno, EAGAIN);
    close(watch);
}

TEST_F(FileReaders, SizesBeyondThirtyTwoBitsAreRefused) {
    for (const std::uintmax_t size :
         {0x80000000ULL, 0xFFFFFFFFULL, 0x100000000ULL, 0x100000010ULL}) {
        const std::string path = MakeFile("sparse", "");
        std::filesystem::resize_file(path, size);
        ExpectThrows<std::invalid_argument>([&] { FileToString(path); },
                                            "File cannot be larger than 32K (" + path + ")");
    }
}

TEST_F(FileReaders, DeviceWithoutAnEndIsRefused) {
    ExpectThrows<std::invalid_argument>([] { FileToString("/dev/zero"); },
                                        "File cannot be larger than 32K (/dev/zero)");
}

TEST_F(FileReaders, BytesAreTakenAsTheyAre) {
    const std::string content("\xEF\xBB\xBF{}\r\n\0\xFF", 9);
    EXPECT_EQ(FileToString(MakeFile("bytes", content)), content);
}

TEST_F(FileReaders, EmptyFileIsAnEmptyString) {
    EXPECT_EQ(FileToString(MakeFile("empty", "")), "");
}

TEST_F(FileReaders, EmptyFileIsAnEmptyObject) {
    EXPECT_EQ(FileToJson(MakeFile("empty", "")), Json::Value(Json::objectValue));
}

TEST_F(FileReaders, MissingFileIsALengthError) {
    ExpectThrows<std::length_error>([&] { FileToString(Folder() + "/none"); },
                                    "basic_string::_M_create");
    ExpectThrows<std::length_error>([&] { FileToJson(Folder() + "/none"); },
                                    "basic_string::_M_create");
}

TEST_F(FileReaders, FileThatIsNotJsonKeepsTheParsersList) {
    const std::string path = MakeFile("broken.json", "{\"tag\":}");
    ExpectThrows<std::runtime_error>(
        [&] { FileToJson(path); },
        "* Line 1, Column 8\n  Syntax error: value, object or array expected.\n");
}

TEST_F(FileReaders, LargeFileIsRefusedByFileToJson) {
    const std::string path = MakeFile("large", std::string(32769, ' '));
    ExpectThrows<std::invalid_argument>([&] { FileToJson(path); },
                                        "File cannot be larger than 32K (" + path + ")");
}

TEST_F(FileReaders, ParsingErrorIsToldWithTheFile) {
    const std::string path = MakeFile("good.json", "{}");
    Interposer interposer;
    interposer.ThrowFromParse("inner");
    ExpectThrows<HalcyrREST::JSONParsingError>([&] { FileToJson(path); },
                                               "Failed to parse payload registration in file '" +
                                                   path + "'\ninner\n");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
