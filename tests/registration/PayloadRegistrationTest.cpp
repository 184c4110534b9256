#include "support/CleanTest.h"
#include "support/Throws.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <json/value.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Registration = HalcyrREST::PayloadRegistration;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

const char* const emptyDocument = "{\n\t\"boardAddress\" : 0,\n\t\"corbaName\" : \"\",\n"
                                  "\t\"description\" : \"\",\n\t\"hostID\" : \"\",\n"
                                  "\t\"reportingAddress\" : 0,\n\t\"tag\" : \"\"\n}\n";

class PayloadRegistrationFile : public CleanTest {
protected:
    /// Expects the constructor to throw exactly that and to tell it on standard output.
    template <typename Exception>
    void ExpectRefused(const std::string& path, const std::string& message) {
        CaptureStdout();
        ExpectThrows<Exception>([&] { const Registration record(path); }, message);
        EXPECT_EQ(GetCapturedStdout(), "PayloadRegistration(): " + message);
    }
};

TEST_F(PayloadRegistrationFile, DefaultsAreEmptyAndZero) {
    const Registration record;
    EXPECT_EQ(record.tag + record.description + record.corbaName + record.hostID, "");
    EXPECT_EQ(record.boardAddress, 0);
    EXPECT_EQ(record.reportingAddress, 0);
}

TEST_F(PayloadRegistrationFile, EverySixMembersAreRead) {
    const Registration record(MakeFile(
        "r.json", R"({"tag":"t","description":"d","boardAddress":1,"reportingAddress":65535,
                      "corbaName":"c","hostID":"h"})"));
    EXPECT_EQ(record.tag, "t");
    EXPECT_EQ(record.description, "d");
    EXPECT_EQ(record.boardAddress, 1);
    EXPECT_EQ(record.reportingAddress, 65535);
    EXPECT_EQ(record.corbaName, "c");
    EXPECT_EQ(record.hostID, "h");
}

TEST_F(PayloadRegistrationFile, EmptyObjectGivesDefaultsAndTheSixMembersAlone) {
    const std::string path = MakeFile("r.json", "{}");
    EXPECT_EQ(Registration(path).ToJSON(path), emptyDocument);
}

TEST_F(PayloadRegistrationFile, MemberListWithoutBracesIsAccepted) {
    EXPECT_EQ(Registration(MakeFile("r.json", "\"tag\":\"t\",\n\"hostID\":\"h\"\n")).hostID, "h");
}

TEST_F(PayloadRegistrationFile, AddressesAreKeptModulo65536) {
    const std::string path =
        MakeFile("r.json", R"({"boardAddress":70000,"reportingAddress":4294967295})");
    const Registration record(path);
    EXPECT_EQ(record.boardAddress, 4464);
    EXPECT_EQ(record.reportingAddress, 65535);
    const std::string text = record.ToJSON(path);
    EXPECT_NE(text.find("\"boardAddress\" : 4464,"), std::string::npos) << text;
    EXPECT_NE(text.find("\"reportingAddress\" : 65535,"), std::string::npos) << text;
}

TEST_F(PayloadRegistrationFile, OtherMembersAreCarriedThrough) {
    const std::string path =
        MakeFile("r.json",
                 R"({"hardware":[{"model":"m"}],"interface":[],"enabled":true,"defaults":null,
            "generateAlarms":false,"own":1.5,"tag":{"was":"an object"}})");
    Registration record;
    record.tag = "t";
    EXPECT_EQ(record.ToJSON(path),
              "{\n\t\"boardAddress\" : 0,\n\t\"corbaName\" : \"\",\n\t\"defaults\" : null,\n"
              "\t\"description\" : \"\",\n\t\"enabled\" : true,\n\t\"generateAlarms\" : false,\n"
              "\t\"hardware\" : \n\t[\n\t\t{\n\t\t\t\"model\" : \"m\"\n\t\t}\n\t],\n"
              "\t\"hostID\" : \"\",\n\t\"interface\" : [],\n\t\"own\" : 1.5,\n"
              "\t\"reportingAddress\" : 0,\n\t\"tag\" : \"t\"\n}\n");
}

TEST_F(PayloadRegistrationFile, ToJSONTellsAMissingFileAndGoesOn) {
    CaptureStdout();
    const std::string text = Registration().ToJSON(Folder() + "/none");
    EXPECT_EQ(GetCapturedStdout(), "ToJSON: basic_string::_M_create\n");
    EXPECT_EQ(text, emptyDocument);
}

TEST_F(PayloadRegistrationFile, ToJSONTellsABrokenFileAndGoesOn) {
    CaptureStdout();
    const std::string text = Registration().ToJSON(MakeFile("r.json", "{nope}"));
    EXPECT_EQ(GetCapturedStdout(),
              "ToJSON: * Line 1, Column 2\n  Missing '}' or object member name\n\n");
    EXPECT_EQ(text, emptyDocument);
}

TEST_F(PayloadRegistrationFile, ToJSONTellsALargeFileAndGoesOn) {
    const std::string path = MakeFile("r.json", std::string(32769, ' '));
    CaptureStdout();
    const std::string text = Registration().ToJSON(path);
    EXPECT_EQ(GetCapturedStdout(), "ToJSON: File cannot be larger than 32K (" + path + ")\n");
    EXPECT_EQ(text, emptyDocument);
}

TEST_F(PayloadRegistrationFile, ToJSONTellsTheParsersOwnExceptionAndGoesOn) {
    const std::string path =
        MakeFile("r.json", "\"a\":" + std::string(1001, '[') + std::string(1001, ']'));
    CaptureStdout();
    const std::string text = Registration().ToJSON(path);
    EXPECT_EQ(GetCapturedStdout(), "ToJSON: Exceeded stackLimit in readValue().\n");
    EXPECT_EQ(text, emptyDocument);
}

TEST_F(PayloadRegistrationFile, MissingFileIsToldAndThrown) {
    ExpectRefused<std::length_error>(Folder() + "/none", "basic_string::_M_create");
}

TEST_F(PayloadRegistrationFile, FileOf32769BytesIsToldAndThrown) {
    const std::string path = MakeFile("r.json", std::string(32769, ' '));
    ExpectRefused<std::invalid_argument>(path, "File cannot be larger than 32K (" + path + ")");
}

TEST_F(PayloadRegistrationFile, FileThatIsNotJsonIsToldAndThrown) {
    ExpectRefused<std::runtime_error>(MakeFile("r.json", "[1]"),
                                      "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

TEST_F(PayloadRegistrationFile, MemberThatCannotBeConvertedIsThrownUntold) {
    const struct {
        const char* document;
        const char* message;
    } cases[] = {
        {R"({"boardAddress":"1"})", "Value is not convertible to UInt."},
        {R"({"reportingAddress":-1})", "LargestInt out of UInt range"},
        {R"({"tag":[]})", "Type is not convertible to string"},
        {R"({"hostID":{}})", "Type is not convertible to string"},
    };
    for (const auto& refused : cases) {
        const std::string path = MakeFile("r.json", refused.document);
        CaptureStdout();
        ExpectThrows<Json::LogicError>([&] { const Registration record(path); }, refused.message);
        EXPECT_EQ(GetCapturedStdout(), "");
    }
}

TEST_F(PayloadRegistrationFile, ConvertibleMembersAreConverted) {
    const Registration record(
        MakeFile("r.json", R"({"tag":17,"description":true,"corbaName":null,"boardAddress":5.5})"));
    EXPECT_EQ(record.tag, "17");
    EXPECT_EQ(record.description, "true");
    EXPECT_EQ(record.corbaName, "");
    EXPECT_EQ(record.boardAddress, 5);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
