// Hands packets and a file over for relay to shore. Usage: packets_and_files SERVER ID FILE

#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using Brenmoor::MirrinFramework::ByteArray;
using Brenmoor::MirrinFramework::Logger;
using Brenmoor::TavoRemotingLib::HalcyrREST;
using Brenmoor::TavoRemotingLib::CurlUtils::CurlEasyException;

/// Tries again where the way to the server failed, and nowhere else: what the server refuses it
/// refuses again. The server may get the same thing twice, since a failure may have hit the reply
/// alone; so let a packet or a remote name carry a number by which shore can tell.
void Deliver(const std::string& what, const std::function<void()>& send) {
    std::chrono::milliseconds pause(500);
    for (int triesLeft = 3;; pause *= 2) {
        try {
            send();
            std::cout << "delivered " << what << std::endl;
            return;
        } catch (const CurlEasyException& e) {
            if (e.code == CURLE_READ_ERROR || --triesLeft == 0) {
                throw; // a file that cannot be read, or a server that stays away
            }
            std::cerr << what << ", once more: " << e.what() << std::endl;
        }
        std::this_thread::sleep_for(pause);
    }
}

/// A record as the receiver on shore expects it: its number and depth with the high byte first. A
/// packet may hold any bytes, zeros included.
ByteArray DepthPacket(std::uint16_t number, std::uint16_t depthCentimetres) {
    const unsigned char bytes[] = {'D', static_cast<unsigned char>(number >> 8U),
                                   static_cast<unsigned char>(number & 0xFFU),
                                   static_cast<unsigned char>(depthCentimetres >> 8U),
                                   static_cast<unsigned char>(depthCentimetres & 0xFFU)};
    return ByteArray(bytes, sizeof bytes);
}

void SendPackets(HalcyrREST& client, const std::string& id) {
    Deliver("packet 1", [&] { client.SendRawPacketToShore(id, "survey begins"); });
    const ByteArray packet = DepthPacket(2, 4711);
    std::cout << packet.ToStringSplitView() << std::endl; // for people to read
    Deliver("packet 2", [&] { client.SendRawPacketToShore(id, packet); });
}

/// The library takes what libcurl takes: a folder would arrive as an empty file, "-" would be
/// standard input, and a FIFO would wait for its writer.
void SendFile(HalcyrREST& client, const std::string& id, const std::string& fileName) {
    if (!std::filesystem::is_regular_file(fileName)) {
        throw std::runtime_error(fileName + " is not a file");
    }
    Deliver(fileName, [&] { client.SendFileToShore(id, fileName, "survey/0001.bin"); });
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: packets_and_files SERVER ID FILE" << std::endl;
        return 2;
    }
    try {
        Logger logger(std::clog, 0); // 7 would show what is sent
        HalcyrREST client(argv[1], logger, /* verbose = */ false);
        SendPackets(client, argv[2]);
        SendFile(client, argv[2], argv[3]);
    } catch (const std::exception& e) {
        std::cerr << "packets_and_files: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
