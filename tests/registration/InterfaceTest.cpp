#include "support/Throws.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using PRInterface = HalcyrREST::PRInterface;

PRInterface Make(const std::string& partNumber, const std::string& swVer) {
    PRInterface record;
    record.partNumber = partNumber;
    record.swVer = swVer;
    return record;
}

void ExpectHolds(const PRInterface& record, const std::string& partNumber,
                 const std::string& swVer) {
    EXPECT_EQ(record.partNumber, partNumber);
    EXPECT_EQ(record.swVer, swVer);
}

TEST(PRInterface, IsEmptyWhenMade) {
    ExpectHolds(PRInterface(), "", "");
}

TEST(PRInterfaceInitFromJSON, TakesBothMembers) {
    PRInterface record;
    record.InitFromJSON(R"({"pn":"P-1","swver":"2.0"})");
    ExpectHolds(record, "P-1", "2.0");
}

TEST(PRInterfaceInitFromJSON, EntryWithOnlySwVerResetsThePartNumber) {
    PRInterface record = Make("old", "old");
    record.InitFromJSON(R"("swver":"2.0")");
    ExpectHolds(record, "", "2.0");
}

TEST(PRInterfaceInitFromJSON, MembersOfOtherTypesAreEmpty) {
    PRInterface record = Make("old", "old");
    record.InitFromJSON(R"({"pn":17,"swver":["2.0"]})");
    ExpectHolds(record, "", "");
}

TEST(PRInterfaceInitFromJSON, TextThatIsNotJsonLeavesTheRecord) {
    PRInterface record = Make("old", "older");
    ExpectThrows<std::runtime_error>([&] { record.InitFromJSON("{nope}"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
    ExpectHolds(record, "old", "older");
}

TEST(PRInterfaceInitFromRegJSON, TakesTheFirstOfTwoEntries) {
    PRInterface record = Make("old", "old");
    record.InitFromRegJSON(R"({"interface":[{"pn":"first"},{"pn":"second","swver":"2"}]})");
    ExpectHolds(record, "first", "");
}

TEST(PRInterfaceInitFromRegJSON, RecordStaysWithoutAnEntry) {
    for (const char* const document :
         {"{}", R"({"interface":[]})", R"({"interface":null})", R"({"interface":{"pn":"x"}})",
          R"({"interface":"x"})", R"({"interface":0})"}) {
        PRInterface record = Make("old", "older");
        record.InitFromRegJSON(document);
        ExpectHolds(record, "old", "older");
    }
}

TEST(PRInterfaceInitFromRegJSON, FirstEntryThatIsNoObjectIsRefused) {
    // What the entry's text becomes in braces decides on the parser's words.
    const struct {
        const char* document;
        const char* message;
    } cases[] = {
        {R"({"interface":["text"]})",
         "* Line 1, Column 8\n  Missing ':' after object member name\n"},
        {R"({"interface":[17]})", "* Line 1, Column 2\n  Missing '}' or object member name\n"},
        {R"({"interface":[null]})", "* Line 1, Column 2\n  Missing '}' or object member name\n"},
        {R"({"interface":[[]]})", "* Line 1, Column 2\n  Missing '}' or object member name\n"},
    };
    for (const auto& refused : cases) {
        PRInterface record = Make("old", "older");
        ExpectThrows<std::runtime_error>([&] { record.InitFromRegJSON(refused.document); },
                                         refused.message);
        ExpectHolds(record, "old", "older");
    }
}

TEST(PRInterfaceInitFromRegJSON, DocumentThatIsNotJsonLeavesTheRecord) {
    PRInterface record = Make("old", "older");
    ExpectThrows<std::runtime_error>([&] { record.InitFromRegJSON("{nope}"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
    ExpectHolds(record, "old", "older");
}

TEST(PRInterfaceUpdateJSON, EmptyRecordRemovesTheMember) {
    EXPECT_EQ(PRInterface().UpdateJSON(R"({"interface":[{"pn":"x"}],"tag":"t"})"),
              "{\n\t\"tag\" : \"t\"\n}\n");
    EXPECT_EQ(PRInterface().UpdateJSON(R"("tag":"t")"), "{\n\t\"tag\" : \"t\"\n}\n");
}

TEST(PRInterfaceUpdateJSON, PartNumberAloneIsTheOnlyMember) {
    EXPECT_EQ(Make("P-1", "").UpdateJSON(R"({"interface":"anything"})"),
              "{\n\t\"interface\" : \n\t[\n\t\t{\n\t\t\t\"pn\" : \"P-1\"\n\t\t}\n\t]\n}\n");
}

TEST(PRInterfaceUpdateJSON, SwVerAloneIsTheOnlyMember) {
    EXPECT_EQ(Make("", "2.0").UpdateJSON(""),
              "{\n\t\"interface\" : \n\t[\n\t\t{\n\t\t\t\"swver\" : \"2.0\"\n\t\t}\n\t]\n}\n");
}

TEST(PRInterfaceUpdateJSON, OtherMembersComeBackUnchanged) {
    EXPECT_EQ(Make("P-1", "2.0").UpdateJSON(R"({"z":[1.5,true,null],"tag":"t","own":{"k":-1}})"),
              "{\n\t\"interface\" : \n\t[\n\t\t{\n\t\t\t\"pn\" : \"P-1\",\n\t\t\t\"swver\" : "
              "\"2.0\"\n\t\t}\n\t],\n\t\"own\" : \n\t{\n\t\t\"k\" : -1\n\t},\n\t\"tag\" : \"t\",\n"
              "\t\"z\" : \n\t[\n\t\t1.5,\n\t\ttrue,\n\t\tnull\n\t]\n}\n");
}

TEST(PRInterfaceUpdateJSON, WhatIsWrittenIsReadBack) {
    PRInterface record;
    record.InitFromRegJSON(Make("P \"1\"", "\xC3\xA9").UpdateJSON("{}"));
    ExpectHolds(record, "P \"1\"", "\xC3\xA9");
}

TEST(PRInterfaceUpdateJSON, DocumentThatIsNotJsonIsRefused) {
    ExpectThrows<std::runtime_error>([] { PRInterface().UpdateJSON("[1]"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
