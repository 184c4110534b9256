// What every operation of the client leaves on the server, and that nothing in it is flagged.

#include "ClientTest.h"
#include "HalcyrREST/Operations.h"

#include <MirrinFramework/ByteArray.h>
#include <sys/stat.h>
#include <thread>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

using None = std::vector<std::string>;

class Arrivals : public ClientTest {};

TEST_F(Arrivals, NoOperationRaisesAFlag) {
    const std::string file = NewFile("f.json", "{}");
    const auto operations = TavoRemotingLib::Testing::Operations();
    for (const auto& operation : operations) {
        // For the poll, which asks for one.
        Post("/sim/v1/shutdown", R"({"id":"P1","inSeconds":0})");
        operation.call(client, "P1", file);
        EXPECT_EQ(world.traffic.Entries().back().target, operation.Target("P1"));
    }
    EXPECT_EQ(Flags(), None{});
    EXPECT_EQ(world.traffic.Entries().size(), operations.size());
    for (const TrafficEntry& entry : world.traffic.Entries()) {
        EXPECT_EQ(entry.status, 200) << entry.target;
    }
}

TEST_F(Arrivals, ValuesArriveByteForByteWhateverTheyHold) {
    const std::string any = EveryByte();
    client.SetPayloadKELDSwitch(any, any, true);
    client.SetPayloadKELDSwitch(any, false);
    client.RunScript(any, any);
    client.RegistrationComplete(any);
    client.RegisterPayloadWithContent(any, "{\"tag\": \"t\"}", any);
    const Payload kept = Kept(any);
    EXPECT_EQ(kept.switches, (std::map<std::string, bool>{{any, true}}));
    EXPECT_EQ(kept.mainSwitch, false);
    EXPECT_EQ(Items(kept.scripts).at(0).command, any);
    EXPECT_EQ(kept.hostId, any);
    EXPECT_EQ(JsonText(*kept.registration), R"({"tag":"t"})");
    EXPECT_FALSE(kept.registrationComplete) << "a new document is not complete";
    client.TurnPayloadOff(any);
    EXPECT_TRUE(Kept(any).off);
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Arrivals, TextsArriveByteForByteAndSettleTheirCommand) {
    const std::string any = std::string(1, '\0') + EveryByte() + std::string(2, '\0');
    client.RespondToCommand("P1", EveryByte(), any, false, false);
    client.RespondToCommand("P1", "", "", true, true);
    const auto answers = Items(Kept("P1").answers);
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0].tag, EveryByte());
    EXPECT_EQ(answers[0].text, any);
    EXPECT_FALSE(answers[0].complete);
    EXPECT_FALSE(answers[0].succeeded);
    EXPECT_EQ(answers[1].text, "");
    EXPECT_TRUE(answers[1].complete && answers[1].succeeded);
    client.SendRawPacketToShore("P1", any);
    client.SendRawPacketToShore("P1", MirrinFramework::ByteArray(any.data(), 3));
    client.SendRawPacketToShore("P1", "");
    const auto packets = Items(Kept("P1").packets);
    ASSERT_EQ(packets.size(), 3U);
    EXPECT_EQ(packets[0].bytes, any);
    EXPECT_EQ(packets[1].bytes, any.substr(0, 3));
    EXPECT_EQ(packets[2].bytes, "");
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Arrivals, FilesArriveUnchangedWhateverTheirNames) {
    const std::string content = EveryByte() + std::string(70001, 'x') + '\0';
    const std::string names[] = {"a.bin",      "a b.txt",    "quo\"te",      "back\\slash",
                                 "semi;colon", "per%22cent", "\xc3\xa9.jpg", "new\nline",
                                 "'",          "no.html"};
    for (const std::string& name : names) {
        const std::string path = NewFile(name, content);
        client.SendFileToShore("P1", path, "");
        client.SendFileToShoreLegacy("P1", path, "up/" + name);
        client.InstallJar("P1", path);
        const auto files = Items(Kept("P1").files);
        for (std::size_t i = files.size() - 3; i < files.size(); ++i) {
            EXPECT_EQ(files[i].fileName, path);
            EXPECT_EQ(ReadFile(folder.path + "/data/" + files[i].name), content) << name;
        }
        EXPECT_EQ(files[files.size() - 2].remote, "up/" + name);
    }
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Arrivals, AFileThatIsAFifoArrives) {
    const std::string path = folder.path + "/fifo";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] { WriteFile(path, "through the pipe"); });
    client.SendFileToShore("P1", path, "piped");
    writer.join();
    EXPECT_EQ(ReadFile(folder.path + "/data/piped"), "through the pipe");
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Arrivals, ARegistrationArrivesWithItsRecordAndWhatTheFileHolds) {
    Client::PayloadRegistration registration;
    registration.tag = "ctd";
    registration.description = "salt \"and\" \xc3\xa9";
    registration.boardAddress = 65535;
    const std::string file = NewFile("r.json", R"({"defaults": {"rate": 4}})");
    client.RegisterPayload("P1", file, registration, "");
    client.RegistrationComplete("P1");
    const Payload kept = Kept("P1");
    ASSERT_TRUE(kept.registration.has_value());
    EXPECT_EQ((*kept.registration)["tag"], "ctd");
    EXPECT_EQ((*kept.registration)["description"], "salt \"and\" \xc3\xa9");
    EXPECT_EQ((*kept.registration)["boardAddress"], 65535);
    EXPECT_EQ((*kept.registration)["defaults"]["rate"], 4);
    EXPECT_TRUE(kept.registrationComplete);
    EXPECT_EQ(kept.hostId, "");
    EXPECT_EQ(Flags(), None{});
}

TEST_F(Arrivals, AnIdThatIsNotEscapedInAReplyIsFlaggedWhereItDoesHarm) {
    client.RespondToCommand("P&1", "t", "x", true, true);
    EXPECT_EQ(Flags(), (None{"/xp?op=reply&id=P&1&tag=t: parameter '1' is unknown"}));
    EXPECT_EQ(Items(Kept("P").answers).size(), 1U) << "it is another payload's";
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
