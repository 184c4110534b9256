#include "scenario/Expectation.h"
#include "support/StandingWorld.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

class ExpectationTest : public StandingWorld {
protected:
    static ExpectationPtr Make(const std::string& kind, const std::string& description) {
        return FindExpectationMaker(kind)(ParsedJson(description));
    }

    std::string Missing(const std::string& kind, const std::string& description) const {
        return Make(kind, description)->Missing(world);
    }

    void Queue(const std::string& tag, const std::string& text) {
        Command command;
        command.tag = tag;
        command.text = text;
        command.number = world.payloads.NewNumber();
        world.payloads.Change("P1", [&](Payload& payload) { payload.commands.Add(command, 1); });
    }

    void Poll() {
        Get("op=poll&id=P1&format=2&maxcommands=9&timeout=0");
    }
};

TEST_F(ExpectationTest, Command) {
    const char expected[] = R"({"id": "P1", "tag": "t1", "text": "done", "succeeded": true})";
    EXPECT_EQ(Missing("command", expected), "there is no such payload");
    Queue("t2", "other");
    EXPECT_EQ(Missing("command", expected), "there is no such command");
    Queue("t1", "work");
    EXPECT_EQ(Missing("command", expected), "it is queued, but not delivered");
    Poll();
    EXPECT_EQ(Missing("command", expected), "it is delivered, but not answered");
    Upload("op=reply&id=P1&tag=t1&complete=false", std::string("half\0", 5));
    EXPECT_EQ(Missing("command", expected), "it is answered 'half', not complete, succeeded");
    EXPECT_EQ(Missing("command", R"({"id": "P1", "tag": "t1", "complete": false})"), "");
    Upload("op=reply&id=P1&tag=t1&succeeded=false", std::string("done\n\0", 6));
    EXPECT_EQ(Missing("command", expected),
              R"(it is answered 'done\x0A', complete, not succeeded)");
    const std::pair<const char*, bool> cases[] = {
        {R"({"id": "P1", "tag": "t1"})", true},
        {R"({"id": "P1", "command": "work"})", true},
        {R"({"id": "P1", "command": "wor"})", false},
        {R"({"id": "P1", "tag": "t1", "command": "work", "succeeded": false})", true},
        {R"({"id": "P1", "tag": "t1", "succeeded": true})", false},
        {R"({"id": "P1", "tag": "t1", "text": "done\n"})", true},
        {R"({"id": "P1", "tag": "t1", "text": "done"})", false},
        {R"({"id": "P1", "tag": "t1", "contains": "one"})", true},
        {R"({"id": "P1", "tag": "t1", "contains": "half"})", false},
        {R"({"id": "P1", "tag": "t2"})", false},
    };
    for (const auto& [description, met] : cases) {
        EXPECT_EQ(Missing("command", description).empty(), met) << description;
    }
}

TEST_F(ExpectationTest, CommandDoesNotTakeAnAnswerThatNobodyAskedFor) {
    Queue("t1", "work");
    Upload("op=reply&id=P1&tag=t1", std::string("early\0", 6));
    EXPECT_EQ(Missing("command", R"({"id": "P1", "tag": "t1"})"),
              "it is queued, but not delivered");
}

TEST_F(ExpectationTest, File) {
    const std::string hash = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    Get("op=metadone&id=P1");
    EXPECT_EQ(Missing("file", R"({"id": "P1"})"), "no file arrived");
    Upload("op=upload&id=P1&remote=a%2Fb.bin", "abc", "/tmp/x");
    Upload("op=jar&id=P1", "", "/tmp/y.jar");
    EXPECT_EQ(Missing("file", R"({"id": "P1", "size": 4})"),
              "no such file arrived; the last is y.jar of 0 bytes, SHA-256 "
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    const std::pair<std::string, bool> cases[] = {
        {R"("size": 3)", true},
        {R"("size": 3, "operation": "jar")", false},
        {R"("size": 0, "operation": "jar")", true},
        {R"("remote": "a/b.bin", "name": "a_b.bin")", true},
        {R"("remote": "a_b.bin")", false},
        {R"("name": "a/b.bin")", false},
        {R"("remote": "a/b.bin", "sha256": ")" + hash + "\"", true},
        {R"("sha256": ")" + hash.substr(1) + "0\"", false},
        {R"("sha256": "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD")", true},
    };
    for (const auto& [members, met] : cases) {
        EXPECT_EQ(Missing("file", R"({"id": "P1", )" + members + "}").empty(), met) << members;
    }
}

TEST_F(ExpectationTest, Packet) {
    Get("op=metadone&id=P1");
    EXPECT_EQ(Missing("packet", R"({"id": "P1", "hex": ""})"), "no packet arrived");
    Upload("op=rawpacket&id=P1", std::string("a\\x00\\xFF\0", 10));
    Upload("op=rawpacket&id=P1", std::string("b\0", 2));
    EXPECT_EQ(Missing("packet", R"({"id": "P1", "hex": "6100fF"})"), "");
    EXPECT_EQ(Missing("packet", R"({"id": "P1", "text": "a\\x00\\xff"})"), "");
    EXPECT_EQ(Missing("packet", R"({"id": "P1", "hex": "6100fe"})"),
              "no such packet arrived; the last is b");
}

TEST_F(ExpectationTest, Registration) {
    Get("op=metadone&id=P1");
    EXPECT_EQ(Missing("registration", R"({"id": "P1"})"), "it is not registered");
    const std::string document =
        R"("tag": "ctd", "hardware": [{"pn": "A"}, {"pn": "B"}], "nothing": null)";
    Upload("op=meta&id=P1", document + std::string(1, '\0'));
    const std::pair<const char*, const char*> cases[] = {
        {R"("member": "tag")", ""},
        {R"("member": "tag", "equals": "ctd")", ""},
        {R"("member": "tag", "equals": "cte")", R"(it is "ctd")"},
        {R"("member": "hardware[1].pn", "equals": "B")", ""},
        {R"("member": "hardware[1]", "equals": {"pn": "B"})", ""},
        {R"("member": "nothing", "equals": null)", ""},
        {R"("member": "tag", "equals": null)", R"(it is "ctd")"},
        {R"("member": "hardware[2]")", "there is no such member"},
        {R"("member": "hardware[2].pn")", "there is no such member"},
        {R"("member": "hardware.pn")", "there is no such member"},
        {R"("member": "tag[0]")", "there is no such member"},
        {R"("member": "gat")", "there is no such member"},
    };
    for (const auto& [members, missing] : cases) {
        EXPECT_EQ(Missing("registration", std::string(R"({"id": "P1", )") + members + "}"), missing)
            << members;
    }
}

TEST_F(ExpectationTest, PayloadAndSwitches) {
    Get("op=pwr&id=P1&sw=pump&cmd=on");
    EXPECT_EQ(Missing("payload", R"({"id": "P1", "off": true, "registrationComplete": true})"),
              "off is false, registrationComplete is false");
    EXPECT_EQ(Missing("payload", R"({"id": "P1", "off": false, "shutdownTold": false})"), "");
    EXPECT_EQ(Missing("payload", R"({"id": "P1", "shutdownTold": true})"), "shutdownTold is false");
    Get("op=off&id=P1");
    EXPECT_EQ(Missing("payload", R"({"id": "P1", "off": true})"), "");
    EXPECT_EQ(Missing("switch", R"({"id": "P1", "name": "pump", "on": true})"), "");
    EXPECT_EQ(Missing("switch", R"({"id": "P1", "name": "pump", "on": false})"), "it is on");
    EXPECT_EQ(Missing("switch", R"({"id": "P1", "name": "probe", "on": false})"),
              "it was never turned");
    EXPECT_EQ(Missing("switch", R"({"id": "P1", "on": true})"), "it was never turned");
    Get("op=pwr&id=P1&cmd=off");
    EXPECT_EQ(Missing("switch", R"({"id": "P1", "on": true})"), "it is off");
}

TEST_F(ExpectationTest, ExchangesAndFaultsAreCountedAsTheyEnd) {
    struct Case {
        const char* kind;
        const char* description;
        const char* missing;
    };
    const Case cases[] = {
        {"exchanges", R"({"operation": "poll"})", ""},
        {"exchanges", R"({"operation": "off"})", "there were 0"},
        {"exchanges", R"({"count": 3})", ""},
        {"exchanges", R"({"count": 2})", "there were 3"},
        {"exchanges", R"({"operation": "poll", "id": "P1", "count": 1})", ""},
        {"exchanges", R"({"atLeast": 4})", "there were 3"},
        {"exchanges", R"({"atLeast": 3, "atMost": 3})", ""},
        {"exchanges", R"({"atMost": 2})", "there were 3"},
        {"exchanges", R"({"operation": "off", "atMost": 0})", ""},
        {"fault", R"({"name": "body-cut"})", ""},
        {"fault", R"({"name": "body-cut", "count": 2})", "it hit 1 replies"},
        {"fault", R"({"name": "body-cut", "operation": "upload"})", "it hit 0 replies"},
        {"fault", R"({"name": "silence", "atMost": 0})", ""},
        {"noFlags", R"({})", "exchange 2: two ids"},
        {"noFlags", R"({"operation": "upload"})", "exchange 3: no length"},
        {"noFlags", R"({"operation": "off"})", ""},
    };
    std::vector<ExpectationPtr> expectations;
    for (const Case& one : cases) {
        expectations.push_back(Make(one.kind, one.description));
    }
    world.traffic.WhenEnded([&](const TrafficEntry& entry) {
        for (const ExpectationPtr& expectation : expectations) {
            expectation->Note(entry);
        }
    });
    EndExchange("poll", {"P2", "P1"}, {}, "body-cut");
    EndExchange("poll", {"P2"}, {"two ids", "no format"});
    EndExchange("upload", {"P1"}, {"no length"});
    for (std::size_t i = 0; i < expectations.size(); ++i) {
        EXPECT_EQ(expectations[i]->Missing(world), cases[i].missing) << cases[i].description;
    }
}

TEST_F(ExpectationTest, AnOpenExchangeIsNotCountedYet) {
    const ExpectationPtr expectation = Make("exchanges", R"({"count": 1})");
    world.traffic.WhenEnded([&](const TrafficEntry& entry) { expectation->Note(entry); });
    TrafficEntry entry;
    entry.recording = std::make_shared<Recording>();
    const std::uint64_t number = world.traffic.Begin(entry);
    world.traffic.Change(number, [](TrafficEntry& open) { open.status = 200; });
    EXPECT_EQ(expectation->Missing(world), "there were 0");
    world.traffic.Change(number, [](TrafficEntry& open) { open.open = false; });
    world.traffic.Change(number, [](TrafficEntry& ended) { ended.status = 500; });
    EXPECT_EQ(expectation->Missing(world), "");
    entry.open = false;
    world.traffic.Begin(entry);
    EXPECT_EQ(expectation->Missing(world), "there were 2");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
