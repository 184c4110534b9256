#include "support/Wire.h"
#include "support/WritingLine.h"

#include <Poco/Net/NetException.h>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <thread>
#include <tuple>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

/// A connection that sees how it ends.
class Tap {
public:
    Tap(std::uint16_t port, const std::string& request)
        : socket(Poco::Net::SocketAddress("127.0.0.1", port)) {
        socket.sendBytes(request.data(), static_cast<int>(request.size()));
    }

    /// Everything up to the end, but not more than so much.
    std::string Read(std::size_t most = 100000000) {
        std::string bytes;
        std::vector<char> buffer(65536);
        while (bytes.size() < most) {
            const std::size_t room = std::min(buffer.size(), most - bytes.size());
            int count = 0;
            try {
                count = socket.receiveBytes(buffer.data(), static_cast<int>(room));
            } catch (const Poco::Net::ConnectionResetException&) {
                end = "reset";
                return bytes;
            }
            if (count == 0) {
                end = "closed";
                return bytes;
            }
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return bytes;
    }

    std::string end = "open";

private:
    Poco::Net::StreamSocket socket;
};

Settings HastySettings(const std::string& folder) {
    Settings settings = SettingsIn(folder);
    settings.pauseScale = 0.001;
    return settings;
}

class FaultWire : public ::testing::Test {
protected:
    FaultWire() {
        std::signal(SIGPIPE, SIG_IGN);
    }

    void Arm(const std::string& fault) {
        ArmedFault armed;
        armed.fault = fault;
        armed.count = 1;
        world.faults.Arm(armed, 1);
    }

    void AwaitEndOfExchanges() const {
        const auto open = [](const TrafficEntry& entry) {
            return entry.open;
        };
        for (;;) {
            const auto entries = world.traffic.Entries();
            if (std::none_of(entries.begin(), entries.end(), open)) {
                return;
            }
            std::this_thread::yield();
        }
    }

    void AwaitStrike() const {
        while (!world.faults.Armed().empty()) {
            std::this_thread::yield();
        }
    }

    const TempFolder folder;
    World world{HastySettings(folder.path + "/data")};
    const Server server{world, "127.0.0.1", 0, nullptr};
    const std::string off = GetText("/xp?op=off&id=P1");
    const std::string upload = UploadText("/xp?op=upload&id=P1", std::string(5000, 'f'), "name");
};

TEST_F(FaultWire, HasTheExactBytesAndTheEndOfEveryFault) {
    for (const Fault& fault : FaultCatalogue()) {
        SCOPED_TRACE(fault.name);
        WritingLine line;
        PlayUsually(fault, line);
        Arm(fault.name);
        {
            Tap tap(server.Port(), off);
            AwaitStrike(); // a client that hung up before would not be struck
            const std::string received =
                line.IsEndless() ? tap.Read(line.Sent().size()) : tap.Read();
            EXPECT_TRUE(received == line.Sent()) << received.substr(0, 1000);
            EXPECT_EQ(tap.end, line.IsEndless() ? "open" : line.WasReset() ? "reset" : "closed");
        }
        // Of those that go on, each notices that the client has hung up.
        AwaitEndOfExchanges();
    }
    EXPECT_EQ(Exchange(server.Port(), off), okReply);
}

TEST_F(FaultWire, StrikesBeforeAndInAnUpload) {
    const std::string early = "HTTP/1.1 413 Content Too Large\r\nContent-Type: text/plain\r\n"
                              "Content-Length: 2\r\nConnection: close\r\n\r\nOK";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"close-before-body", "", "reset"}, {"reset-before-body", "", "reset"},
        {"close-in-upload", "", "reset"},   {"reset-in-upload", "", "reset"},
        {"early-413", early, "closed"},
    };
    for (const auto& [fault, bytes, end] : cases) {
        SCOPED_TRACE(fault);
        Arm(fault);
        Tap tap(server.Port(), upload);
        EXPECT_EQ(tap.Read(), bytes);
        EXPECT_EQ(tap.end, end);
    }
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
}

TEST_F(FaultWire, NoticesTheHangUpThoughTheUploadIsUnread) {
    Arm("upload-unread");
    {
        const Tap tap(server.Port(), upload);
        AwaitStrike();
    }
    AwaitEndOfExchanges();
}

TEST_F(FaultWire, OnlyWhatGarblesAReplyLetsTheOperationBeCarriedOut) {
    Arm("status-404");
    Tap(server.Port(), upload).Read();
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{});
    Arm("body-cut");
    Tap(server.Port(), upload).Read();
    EXPECT_EQ(Entries(folder.path + "/data"), std::vector<std::string>{"name"});
}

TEST_F(FaultWire, WhatReplacesAPollsReplyLosesNoCommandAndDoesNotHold) {
    world.payloads.Change("P1", [](Payload& payload) {
        Command command;
        command.tag = "t7";
        payload.commands.Add(command, 0);
    });
    const auto state = [this] {
        return FirstPayload(server.Port())["commands"][0]["state"].asString();
    };
    const std::string poll = GetText("/xp?op=poll&id=P1&format=2&timeout=3600000");
    Arm("json-word");
    EXPECT_EQ(BodyOf(Tap(server.Port(), poll).Read()), "pong");
    EXPECT_EQ(state(), "queued");
    Arm("body-cut");
    EXPECT_EQ(BodyOf(Tap(server.Port(), poll).Read()), "{\"commands\":[{\"command");
    EXPECT_EQ(state(), "delivered");
    // Nothing is left to report, and yet it is answered.
    Arm("json-word");
    EXPECT_EQ(BodyOf(Tap(server.Port(), poll).Read()), "pong");
}

TEST_F(FaultWire, AStoppedServerEndsWhateverIsPlayed) {
    for (const Fault& fault : FaultCatalogue()) {
        WritingLine line;
        PlayUsually(fault, line);
        if (!line.IsEndless()) {
            continue;
        }
        SCOPED_TRACE(fault.name);
        World fresh(SettingsIn(folder.path + "/more"));
        auto stopped = std::make_unique<Server>(fresh, "127.0.0.1", 0, nullptr);
        ArmedFault armed;
        armed.fault = fault.name;
        armed.count = 1;
        fresh.faults.Arm(armed, 1);
        // It does not read, so that what is sent without end soon finds no room.
        const Tap tap(stopped->Port(), off);
        while (!fresh.faults.Armed().empty()) {
            std::this_thread::yield();
        }
        const auto begin = std::chrono::steady_clock::now();
        stopped.reset();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
