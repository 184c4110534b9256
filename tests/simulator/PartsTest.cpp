#include "model/Traffic.h"
#include "support/Wire.h"
#include "wire/EscapedText.h"
#include "wire/Exchange.h"
#include "wire/ExchangeHandler.h"
#include "wire/Json.h"

#include <chrono>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

std::string RefusalOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Refusal& refusal) {
        return std::to_string(refusal.status) + " " + refusal.what();
    }
    return "no refusal";
}

TEST(EscapedText, TurnsEveryByteThereAndBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    EXPECT_EQ(Unescape(Escape(bytes)), bytes);
    EXPECT_EQ(Escape(std::string("a\\b\0\xff~", 6)), "a\\\\b\\x00\\xFF~");
    EXPECT_EQ(Unescape("\\xfF\\\\x41"), "\xff\\x41");
    EXPECT_EQ(Hexadecimal(std::string("\0\xab", 2)), "00AB");
}

TEST(EscapedText, RefusesWhatEscapeCannotHaveMade) {
    EXPECT_EQ(RefusalOf([] { Unescape("ab\\"); }), "400 An unknown escape stands at offset 2");
    EXPECT_EQ(RefusalOf([] { Unescape("\\n"); }), "400 An unknown escape stands at offset 0");
    EXPECT_EQ(RefusalOf([] { Unescape("\\x4"); }),
              "400 Two hexadecimal digits are missing at offset 3");
    EXPECT_EQ(RefusalOf([] { Unescape("\\xg0"); }),
              "400 Two hexadecimal digits are missing at offset 2");
    EXPECT_EQ(RefusalOf([] { Unescape("a\n"); }),
              "400 An unprintable byte stands unescaped at offset 1");
}

TEST(Traffic, NumbersEntriesAndDropsTheOldestThatHasEnded) {
    Changes changes;
    Traffic traffic(changes, 2);
    for (const char* const target : {"/a", "/b", "/c"}) {
        TrafficEntry entry;
        entry.target = target;
        entry.open = entry.target == "/a";
        traffic.Begin(entry);
    }
    const auto entries = traffic.Entries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].number, 1U);
    EXPECT_EQ(entries[0].target, "/a");
    EXPECT_EQ(entries[1].number, 3U);
    EXPECT_EQ(entries[1].target, "/c");
}

TEST(Traffic, LineIsOneReadableLine) {
    const auto recording = std::make_shared<Recording>();
    recording->AddReceived("abc", 3);
    recording->AddSent("de", 2);
    TrafficEntry entry;
    entry.peer = "127.0.0.1:4711";
    entry.method = "GET";
    entry.target = "/xp?op=off\x1b[2J";
    entry.status = 200;
    entry.reason = "OK";
    entry.durationSeconds = 1.5;
    entry.recording = recording;
    EXPECT_EQ(LineText(entry, "2026-01-02T03:04:05.678Z"),
              "2026-01-02T03:04:05.678Z 127.0.0.1:4711 GET /xp?op=off\\x1B[2J "
              "(3 bytes) -> 200 OK (2 bytes) after 1.500 s");
    entry.fault = "silence";
    entry.flags = {"odd"};
    EXPECT_EQ(LineText(entry, "now").substr(70), " after 1.500 s fault: silence flag: odd");
}

TEST(Request, DecodesParametersInOrder) {
    std::istringstream none;
    const Request request("GET", "/xp?op=poll&id=a%26b&id=%00%ff&x=", none);
    EXPECT_EQ(request.path, "/xp");
    ASSERT_EQ(request.parameters.size(), 4U);
    EXPECT_EQ(request.parameters[1].second, "a&b");
    EXPECT_EQ(request.parameters[2].second, std::string("\0\xff", 2));
    EXPECT_EQ(request.Given("x"), "");
    EXPECT_EQ(RefusalOf([&] { request.Filled("x"); }), "400 Parameter 'x' is empty");
    EXPECT_EQ(RefusalOf([&] { request.Given("y"); }), "400 Parameter 'y' is missing");
    EXPECT_EQ(RefusalOf([&] { Request("GET", "/xp?id=%4", none); }),
              "400 The request target has a broken escape");
}

TEST(Request, ReadsNumbersAndFlagsExactly) {
    std::istringstream none;
    const Request request("GET", "/xp?a=-7&b=true&c=1x&d=&e=9223372036854775808&f=yes", none);
    EXPECT_EQ(request.Number("a", -7), -7);
    EXPECT_EQ(RefusalOf([&] { request.Number("a", 0); }),
              "400 Parameter 'a' is not a usable number: '-7'");
    for (const char* const name : {"c", "d", "e"}) {
        EXPECT_EQ(RefusalOf([&] { request.Number(name, 0); }).rfind("400 Parameter '", 0), 0U);
    }
    EXPECT_TRUE(request.Flag("b", false));
    EXPECT_TRUE(request.Flag("absent", true));
    EXPECT_EQ(RefusalOf([&] { request.Flag("f", true); }),
              "400 Parameter 'f' must be true or false, not 'yes'");
}

TEST(ExchangeDesk, WaitsForTheExchangesUnderWayAndNoLonger) {
    const TempFolder folder;
    World world(SettingsIn(folder.path));
    ExchangeDesk desk(world, nullptr);
    desk.WaitUntilIdle(std::chrono::hours(1));
    desk.Begin();
    const double begin = world.clock.Seconds();
    desk.WaitUntilIdle(std::chrono::milliseconds(50));
    EXPECT_GE(world.clock.Seconds() - begin, 0.05);
    std::thread waiter([&] { desk.WaitUntilIdle(std::chrono::hours(1)); });
    desk.End();
    waiter.join();
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
