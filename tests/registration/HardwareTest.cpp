#include "support/Throws.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using PRHardware = HalcyrREST::PRHardware;

PRHardware Full() {
    PRHardware record;
    record.manufacturer = "maker";
    record.model = "model";
    record.partNumber = "P-1";
    record.serialNumber = "S-1";
    record.swVer = "2.0";
    record.tty = "/dev/ttyS1";
    record.hasPower = true;
    record.power = 12;
    record.connector = "J4";
    return record;
}

PRHardware WithModel(const std::string& model) {
    PRHardware record;
    record.model = model;
    return record;
}

void ExpectEqual(const PRHardware& actual, const PRHardware& expected) {
    EXPECT_EQ(actual.manufacturer, expected.manufacturer);
    EXPECT_EQ(actual.model, expected.model);
    EXPECT_EQ(actual.partNumber, expected.partNumber);
    EXPECT_EQ(actual.serialNumber, expected.serialNumber);
    EXPECT_EQ(actual.swVer, expected.swVer);
    EXPECT_EQ(actual.tty, expected.tty);
    EXPECT_EQ(actual.hasPower, expected.hasPower);
    if (expected.hasPower) {
        EXPECT_EQ(actual.power, expected.power);
    }
    EXPECT_EQ(actual.connector, expected.connector);
}

TEST(PRHardware, IsBlankWhenMade) {
    const PRHardware record;
    EXPECT_EQ(record.manufacturer + record.model + record.partNumber + record.serialNumber +
                  record.swVer + record.tty + record.connector,
              "");
    EXPECT_FALSE(record.hasPower);
}

TEST(PRHardwareInitFromJSON, TakesEveryMember) {
    PRHardware record;
    record.InitFromJSON(R"({"manufacturer":"maker","model":"model","pn":"P-1","serial":"S-1",
        "swver":"2.0","tty":"/dev/ttyS1","power":12,"connector":"J4"})");
    ExpectEqual(record, Full());
}

TEST(PRHardwareInitFromJSON, MembersOfOtherTypesAreSkipped) {
    PRHardware record = Full();
    record.InitFromJSON(R"({"manufacturer":1,"model":null,"pn":true,"serial":[],"swver":{},
        "tty":1.5,"power":null,"connector":0})");
    ExpectEqual(record, PRHardware());
}

TEST(PRHardwareInitFromJSON, PowerIsTakenOnlyAsAnIntOfThirtyTwoBits) {
    const struct {
        const char* text;
        bool hasPower;
        int power;
    } cases[] = {
        {"12", true, 12},
        {"0", true, 0},
        {"-5", true, -5},
        {"2147483647", true, 2147483647},
        {"-2147483648", true, -2147483647 - 1},
        {"12.0", true, 12},
        {"1e3", true, 1000},
        {"\"12\"", false, 0},
        {"12.5", false, 0},
        {"2147483648", false, 0},
        {"true", false, 0},
        {"[12]", false, 0},
    };
    for (const auto& expected : cases) {
        PRHardware record = Full();
        record.InitFromJSON(std::string("\"power\":") + expected.text);
        EXPECT_EQ(record.hasPower, expected.hasPower) << expected.text;
        EXPECT_EQ(record.power, expected.power) << expected.text;
    }
}

TEST(PRHardwareInitFromJSON, TextThatIsNotJsonLeavesABlankRecord) {
    PRHardware record = Full();
    ExpectThrows<std::runtime_error>([&] { record.InitFromJSON("{nope}"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
    ExpectEqual(record, PRHardware());
}

TEST(PRHardwareInitFromRegJSON, TakesEveryEntryInOrderBlankOnesToo) {
    std::vector<PRHardware> list = {WithModel("old")};
    PRHardware::InitFromRegJSON(R"({"hardware":[{"model":"a"},{},{"model":"b"}]})", list);
    ASSERT_EQ(list.size(), 3U);
    ExpectEqual(list[0], WithModel("a"));
    ExpectEqual(list[1], PRHardware());
    ExpectEqual(list[2], WithModel("b"));
}

TEST(PRHardwareInitFromRegJSON, DocumentWithoutAnArrayEmptiesTheList) {
    for (const char* const document : {"{}", R"({"hardware":[]})", R"({"hardware":null})",
                                       R"({"hardware":{"model":"a"}})", R"({"hardware":"a"})"}) {
        std::vector<PRHardware> list = {WithModel("old")};
        PRHardware::InitFromRegJSON(document, list);
        EXPECT_TRUE(list.empty()) << document;
    }
}

TEST(PRHardwareInitFromRegJSON, DocumentThatIsNotJsonLeavesTheList) {
    std::vector<PRHardware> list = {WithModel("old")};
    ExpectThrows<std::runtime_error>([&] { PRHardware::InitFromRegJSON("{nope}", list); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
    ASSERT_EQ(list.size(), 1U);
    ExpectEqual(list[0], WithModel("old"));
}

TEST(PRHardwareInitFromRegJSON, EntryThatIsNoObjectIsRefusedAndKeepsThoseBefore) {
    for (const char* const entry : {"17", "null", "[]"}) {
        std::vector<PRHardware> list = {WithModel("old"), WithModel("older")};
        ExpectThrows<std::runtime_error>(
            [&] {
                PRHardware::InitFromRegJSON(
                    R"({"hardware":[{"model":"a"},)" + std::string(entry) + "]}", list);
            },
            "* Line 1, Column 2\n  Missing '}' or object member name\n");
        ASSERT_EQ(list.size(), 1U) << entry;
        ExpectEqual(list[0], WithModel("a"));
    }
}

TEST(PRHardwareInitFromRegJSON, EntryThatIsAStringIsRefused) {
    std::vector<PRHardware> list;
    ExpectThrows<std::runtime_error>(
        [&] { PRHardware::InitFromRegJSON(R"({"hardware":["text"]})", list); },
        "* Line 1, Column 8\n  Missing ':' after object member name\n");
    EXPECT_TRUE(list.empty());
}

TEST(PRHardwareUpdateJSON, EmptyListRemovesTheMember) {
    EXPECT_EQ(PRHardware::UpdateJSON(R"({"hardware":[{"model":"a"}],"tag":"t"})", {}),
              "{\n\t\"tag\" : \"t\"\n}\n");
}

TEST(PRHardwareUpdateJSON, ListOfBlankRecordsWritesNull) {
    EXPECT_EQ(PRHardware::UpdateJSON(R"({"hardware":[{"model":"a"}]})", {PRHardware()}),
              "{\n\t\"hardware\" : null\n}\n");
    EXPECT_EQ(PRHardware::UpdateJSON("{}", {PRHardware(), PRHardware()}),
              "{\n\t\"hardware\" : null\n}\n");
}

TEST(PRHardwareUpdateJSON, PowerOfZeroIsWrittenWhenItsFlagIsSet) {
    PRHardware record;
    record.hasPower = true;
    record.power = 0;
    EXPECT_EQ(PRHardware::UpdateJSON("{}", {record}),
              "{\n\t\"hardware\" : \n\t[\n\t\t{\n\t\t\t\"power\" : 0\n\t\t}\n\t]\n}\n");
}

TEST(PRHardwareUpdateJSON, PowerIsNotWrittenWithoutItsFlag) {
    PRHardware record = WithModel("a");
    record.power = 7;
    EXPECT_EQ(PRHardware::UpdateJSON("{}", {record}),
              "{\n\t\"hardware\" : \n\t[\n\t\t{\n\t\t\t\"model\" : \"a\"\n\t\t}\n\t]\n}\n");
}

TEST(PRHardwareUpdateJSON, EveryMemberHasItsKey) {
    EXPECT_EQ(PRHardware::UpdateJSON("{}", {Full()}),
              "{\n\t\"hardware\" : \n\t[\n\t\t{\n\t\t\t\"connector\" : \"J4\",\n"
              "\t\t\t\"manufacturer\" : \"maker\",\n\t\t\t\"model\" : \"model\",\n"
              "\t\t\t\"pn\" : \"P-1\",\n\t\t\t\"power\" : 12,\n\t\t\t\"serial\" : \"S-1\",\n"
              "\t\t\t\"swver\" : \"2.0\",\n\t\t\t\"tty\" : \"/dev/ttyS1\"\n\t\t}\n\t]\n}\n");
}

TEST(PRHardwareUpdateJSON, EachMemberAloneMakesARecordThatIsNotBlank) {
    std::string PRHardware::*const members[] = {
        &PRHardware::manufacturer, &PRHardware::model, &PRHardware::partNumber,
        &PRHardware::serialNumber, &PRHardware::swVer, &PRHardware::tty,
        &PRHardware::connector};
    for (const auto member : members) {
        PRHardware record;
        record.*member = "x";
        std::vector<PRHardware> readBack;
        PRHardware::InitFromRegJSON(PRHardware::UpdateJSON("{}", {record}), readBack);
        ASSERT_EQ(readBack.size(), 1U);
        ExpectEqual(readBack[0], record);
    }
}

TEST(PRHardwareUpdateJSON, WhatIsWrittenIsReadBackWithoutBlankRecords) {
    std::vector<PRHardware> readBack;
    PRHardware::InitFromRegJSON(
        PRHardware::UpdateJSON("{}", {Full(), PRHardware(), WithModel("\xC3\xA9\n")}), readBack);
    ASSERT_EQ(readBack.size(), 2U);
    ExpectEqual(readBack[0], Full());
    ExpectEqual(readBack[1], WithModel("\xC3\xA9\n"));
}

TEST(PRHardwareUpdateJSON, OtherMembersComeBackUnchanged) {
    EXPECT_EQ(PRHardware::UpdateJSON(R"("tag":"t","own":[1])", {WithModel("a")}),
              "{\n\t\"hardware\" : \n\t[\n\t\t{\n\t\t\t\"model\" : \"a\"\n\t\t}\n\t],\n"
              "\t\"own\" : \n\t[\n\t\t1\n\t],\n\t\"tag\" : \"t\"\n}\n");
}

TEST(PRHardwareUpdateJSON, DocumentThatIsNotJsonIsRefused) {
    ExpectThrows<std::runtime_error>([] { PRHardware::UpdateJSON("[1]", {}); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
