#include "support/Interposer.h"
#include "support/Throws.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <json/value.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using GPS = HalcyrREST::GPSInfo;

std::uint64_t Bits(double value) {
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void ExpectNotSupplied(double field) {
    EXPECT_EQ(Bits(field), 0x7FF8000000000000U);
}

void ExpectInvalid(const GPS& gps) {
    EXPECT_TRUE(gps.received);
    EXPECT_TRUE(gps.hasError);
    EXPECT_EQ(gps.errorText, "One or more fields are not valid");
}

/// The latitude of an otherwise valid position.
GPS WithLatitude(const std::string& value) {
    return GPS("{\"latitude\":" + value + ",\"longitude\":2,\"timeFix\":3}");
}

TEST(GPSInfo, DefaultIsNotReceivedAndNotANumber) {
    const GPS gps;
    EXPECT_FALSE(gps.received);
    EXPECT_FALSE(gps.hasError);
    EXPECT_EQ(gps.errorText, "");
    ExpectNotSupplied(gps.latitude);
    ExpectNotSupplied(gps.longitude);
    ExpectNotSupplied(gps.timeFix);
}

TEST(GPSInfo, ValidPositionHasNoError) {
    const GPS gps(R"({"latitude":-33.5,"longitude":151.25,"timeFix":1700000000})");
    EXPECT_TRUE(gps.received);
    EXPECT_FALSE(gps.hasError);
    EXPECT_EQ(gps.errorText, "");
    EXPECT_EQ(gps.latitude, -33.5);
    EXPECT_EQ(gps.longitude, 151.25);
    EXPECT_EQ(gps.timeFix, 1700000000.0);
}

TEST(GPSInfo, ErrorWithoutCoordinatesKeepsTheServersText) {
    const GPS gps(R"({"error":"no fix"})");
    EXPECT_TRUE(gps.received);
    EXPECT_TRUE(gps.hasError);
    EXPECT_EQ(gps.errorText, "no fix");
    ExpectNotSupplied(gps.latitude);
    ExpectNotSupplied(gps.longitude);
    ExpectNotSupplied(gps.timeFix);
}

TEST(GPSInfo, ErrorBesideCoordinatesKeepsBoth) {
    const GPS gps(R"({"error":"old fix","latitude":1,"longitude":2,"timeFix":3})");
    EXPECT_TRUE(gps.hasError);
    EXPECT_EQ(gps.errorText, "old fix");
    EXPECT_EQ(gps.latitude + gps.longitude + gps.timeFix, 6.0);
}

TEST(GPSInfo, EmptyErrorTextIsAnError) {
    const GPS gps(R"({"error":"","latitude":1})");
    EXPECT_TRUE(gps.hasError);
    EXPECT_EQ(gps.errorText, "");
    EXPECT_EQ(gps.latitude, 1.0);
}

TEST(GPSInfo, ErrorThatIsNoStringIsPassedOver) {
    for (const char* const error : {"null", "true", "false", "5", "{}", "[\"x\"]"}) {
        const GPS gps(std::string(R"({"latitude":1,"longitude":2,"timeFix":3,"error":)") + error +
                      "}");
        EXPECT_FALSE(gps.hasError) << error;
        EXPECT_EQ(gps.errorText, "") << error;
    }
}

TEST(GPSInfo, OnlyLatitudeAndLongitudeAreStoredAndInvalid) {
    const GPS gps(R"({"latitude":1.5,"longitude":-2.5})");
    ExpectInvalid(gps);
    EXPECT_EQ(gps.latitude, 1.5);
    EXPECT_EQ(gps.longitude, -2.5);
    ExpectNotSupplied(gps.timeFix);
}

TEST(GPSInfo, EachMissingFieldIsInvalid) {
    const GPS noLatitude(R"({"longitude":2,"timeFix":3})");
    ExpectInvalid(noLatitude);
    ExpectNotSupplied(noLatitude.latitude);
    EXPECT_EQ(noLatitude.longitude + noLatitude.timeFix, 5.0);
    const GPS noLongitude(R"({"latitude":1,"timeFix":3})");
    ExpectInvalid(noLongitude);
    ExpectNotSupplied(noLongitude.longitude);
    EXPECT_EQ(noLongitude.latitude + noLongitude.timeFix, 4.0);
}

TEST(GPSInfo, StringOfDigitsIsNotConverted) {
    const GPS gps = WithLatitude("\"59.5\"");
    ExpectInvalid(gps);
    ExpectNotSupplied(gps.latitude);
    EXPECT_EQ(gps.longitude, 2.0);
}

TEST(GPSInfo, OtherTypesAreNotNumeric) {
    for (const char* const value : {"null", "{}", "[]", "[1]", "{\"a\":1}"}) {
        SCOPED_TRACE(value);
        const GPS gps = WithLatitude(value);
        ExpectInvalid(gps);
        ExpectNotSupplied(gps.latitude);
    }
}

TEST(GPSInfo, BooleansAreNotNumeric) {
    for (const char* const value : {"true", "false"}) {
        const GPS gps = WithLatitude(value);
        ExpectInvalid(gps);
        ExpectNotSupplied(gps.latitude);
    }
}

TEST(GPSInfo, ZeroIsANumber) {
    EXPECT_EQ(Bits(WithLatitude("0").latitude), Bits(0.0));
    EXPECT_EQ(Bits(WithLatitude("-0.0").latitude), Bits(-0.0));
    EXPECT_FALSE(WithLatitude("0").hasError);
}

TEST(GPSInfo, HugeNumbersAreTaken) {
    EXPECT_EQ(WithLatitude("18446744073709551615").latitude, 18446744073709551615.0);
    EXPECT_EQ(WithLatitude("-9223372036854775808").latitude, -9223372036854775808.0);
    EXPECT_EQ(WithLatitude("123456789012345678901234567890").latitude, 1.2345678901234568e29);
    EXPECT_EQ(WithLatitude("1.7976931348623157e308").latitude, 1.7976931348623157e308);
    EXPECT_EQ(WithLatitude("-1e-300").latitude, -1e-300);
}

TEST(GPSInfo, NumberBeyondADoubleIsNoJson) {
    try {
        WithLatitude("1e400");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(typeid(e), typeid(std::runtime_error));
        EXPECT_EQ(std::string(e.what()).substr(0, 20), "* Line 1, Column 13\n");
    }
}

TEST(GPSInfo, EmptyOrBlankTextIsInvalid) {
    ExpectInvalid(GPS(""));
    ExpectInvalid(GPS(" \r\n"));
    ExpectInvalid(GPS("{}"));
}

TEST(GPSInfo, BareMemberListIsAccepted) {
    const GPS gps("\"latitude\":1,\"longitude\":2,\"timeFix\":3\n");
    EXPECT_FALSE(gps.hasError);
    EXPECT_EQ(gps.timeFix, 3.0);
}

TEST(GPSInfo, TextThatIsNotJsonKeepsTheParsersList) {
    ExpectThrows<std::runtime_error>([] { const GPS gps("nope"); },
                                     "* Line 1, Column 2\n  Missing '}' or object member name\n");
}

TEST(GPSInfo, DeepNestingPassesTheParsersOwnException) {
    const std::string json = "\"latitude\":" + std::string(1001, '[') + std::string(1001, ']');
    ExpectThrows<Json::RuntimeError>([&] { const GPS gps(json); },
                                     "Exceeded stackLimit in readValue().");
}

TEST(GPSInfo, ParsingErrorIsToldWithItsType) {
    Interposer interposer;
    interposer.ThrowFromParse("inner");
    ExpectThrows<HalcyrREST::JSONParsingError>([] { const GPS gps("{}"); },
                                               std::string("Failed to parse gps info to JSON (") +
                                                   typeid(HalcyrREST::JSONParsingError).name() +
                                                   ": inner)\n");
}

TEST(GPSInfo, CopiesKeepAllSixFields) {
    GPS original(R"({"error":"e","latitude":1,"longitude":2,"timeFix":3})");
    const GPS copy = original;
    GPS assigned;
    assigned = copy;
    original = GPS();
    for (const GPS& gps : {copy, assigned}) {
        EXPECT_TRUE(gps.received);
        EXPECT_TRUE(gps.hasError);
        EXPECT_EQ(gps.errorText, "e");
        EXPECT_EQ(gps.latitude, 1.0);
        EXPECT_EQ(gps.longitude, 2.0);
        EXPECT_EQ(gps.timeFix, 3.0);
    }
    assigned = GPS();
    EXPECT_FALSE(assigned.received);
    ExpectNotSupplied(assigned.latitude);
}

TEST(ShutdownInfo, DefaultIsNotRequested) {
    EXPECT_FALSE(HalcyrREST::ShutdownInfo().requested);
}

TEST(ShutdownInfo, AnyTextIsIgnored) {
    for (const char* const text : {"", "true", "1", "{\"shutdown\":true}", "nope {"}) {
        EXPECT_FALSE(HalcyrREST::ShutdownInfo(std::string(text)).requested) << text;
    }
}

TEST(ShutdownInfo, CopiesKeepTheFlag) {
    HalcyrREST::ShutdownInfo requested;
    requested.requested = true;
    const HalcyrREST::ShutdownInfo copy = requested;
    HalcyrREST::ShutdownInfo assigned;
    assigned = copy;
    EXPECT_TRUE(copy.requested && assigned.requested);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
