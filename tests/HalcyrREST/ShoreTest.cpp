#include "HalcyrREST/ClientTest.h"

#include <boost/filesystem/exception.hpp>
#include <filesystem>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using MirrinFramework::ByteArray;

class ShorePacket : public ClientTest {
protected:
    /// Expects that both overloads send these bytes as that text.
    void ExpectPacket(const std::string& bytes, const std::string& text) {
        for (const bool isString : {true, false}) {
            const ScriptedServer server(OkReply("ignored"));
            HalcyrREST client(server.Address(), logger, false);
            if (isString) {
                client.SendRawPacketToShore("P 1", bytes);
            } else {
                client.SendRawPacketToShore("P 1", ByteArray(bytes.data(), bytes.size()));
            }
            ExpectTextUpload(server, "/xp?op=rawpacket&id=P%201", text);
        }
    }
};

TEST_F(ShorePacket, PrintableTextTravelsAsItIs) {
    ExpectPacket("abc {1}\"'&=%", "abc {1}\"'&=%");
}

TEST_F(ShorePacket, EmbeddedZeroByteIsTheSameForBothOverloads) {
    ExpectPacket(std::string("a\0b", 3), "a\\x00b");
    ExpectPacket(std::string(1, '\0'), "\\x00");
}

TEST_F(ShorePacket, EmptyPacketIsPosted) {
    ExpectPacket("", "");
}

TEST_F(ShorePacket, EveryByteIsSentAsTextThatCanBeTurnedBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    ExpectPacket(bytes, ByteArray(bytes.data(), bytes.size()).ToASCIIString());
    ExpectPacket("\\x00", "\\\\x00");
}

TEST_F(ShorePacket, PacketThatNamesAFileIsNotRead) {
    const std::string path = MakeFile("secret", "content");
    ExpectPacket(path, path);
}

class ShoreFile : public ClientTest {
protected:
    using Send = void (HalcyrREST::*)(const std::string&, const std::string&, const std::string&);

    void ExpectSent(Send send, const std::string& path, const std::string& remote,
                    const std::string& target, const std::string& content) {
        const ScriptedServer server(OkReply("ERROR, whatever"));
        HalcyrREST client(server.Address(), logger, false);
        (client.*send)("P 1", path, remote);
        ExpectFileUpload(server, target, path, content);
    }

    /// Expects the same of both operations for a file.
    void ExpectBothSend(const std::string& path, const std::string& remote,
                        const std::string& parameters, const std::string& content) {
        ExpectSent(&HalcyrREST::SendFileToShoreLegacy, path, remote,
                   "/xp?op=uploadlegacy&id=P%201" + parameters, content);
        ExpectSent(&HalcyrREST::SendFileToShore, path, remote,
                   "/xp?op=upload&id=P%201" + parameters, content);
    }

    /// Expects that the legacy operation finds no file, and does nothing.
    void ExpectLegacyDoesNotExist(const std::string& path) {
        const ScriptedServer server(OkReply(""));
        HalcyrREST client(server.Address(), logger, false);
        ExpectThrows<std::invalid_argument>([&] { client.SendFileToShoreLegacy("P1", path, "r"); },
                                            "SendFileToShoreLegacy: filename (" + path +
                                                ") does not exist");
        EXPECT_EQ(interposer.Calls(), std::vector<std::string>());
        EXPECT_EQ(server.Requests(), std::vector<std::string>());
    }

    /// Expects that the legacy operation cannot find out whether there is a file.
    void ExpectLegacyCannotTell(const std::string& path, boost::system::errc::errc_t reason) {
        const boost::filesystem::filesystem_error expected(
            "boost::filesystem::status", path,
            boost::system::error_code(reason, boost::system::system_category()));
        HalcyrREST client("127.0.0.1:1", logger, false);
        ExpectThrows<boost::filesystem::filesystem_error>(
            [&] { client.SendFileToShoreLegacy("P1", path, ""); }, expected.what());
        EXPECT_EQ(interposer.Calls(), std::vector<std::string>());
    }

    /// Expects that the current operation fails in the transfer.
    void ExpectReadError(const std::string& path) {
        const ScriptedServer server(StatusReply("404 Not Found"));
        HalcyrREST client(server.Address(), logger, false);
        ExpectEasyError([&] { client.SendFileToShore("P1", path, "r"); }, "curl_easy_perform",
                        CURLE_READ_ERROR);
    }
};

TEST_F(ShoreFile, ContentTravelsUnchangedAndThePathAsWritten) {
    std::string content("\0\r\n--boundary\r\n\xFF\0", 17);
    for (int i = 0; i < 100001; ++i) {
        content += static_cast<char>(i % 253);
    }
    MakeFile("data.bin", content);
    ExpectBothSend(Folder() + "//./data.bin", "", "", content);
}

TEST_F(ShoreFile, EmptyFileIsAnEmptyPart) {
    ExpectBothSend(MakeFile("empty", ""), "", "", "");
}

TEST_F(ShoreFile, EmptyRemoteNameAddsNothing) {
    ExpectBothSend(MakeFile("f", "x"), "", "", "x");
}

TEST_F(ShoreFile, RemoteNameIsEscaped) {
    ExpectBothSend(MakeFile("f", "x"), "logs/day 1&2.txt", "&remote=logs%2Fday%201%262.txt", "x");
}

TEST_F(ShoreFile, DirectoryPassesTheLegacyTest) {
    const std::string path = Folder() + "/d";
    std::filesystem::create_directory(path);
    const ScriptedServer server(OkReply(""));
    HalcyrREST(server.Address(), logger, false).SendFileToShoreLegacy("P1", path, "");
    // libcurl sends it as an empty part, in a form whose length it does not tell beforehand.
    const std::string request = server.OnlyRequest();
    const std::string form = UploadRequest("", "", path, "", FormBoundary(request));
    EXPECT_NE(request.find(form.substr(RequestHead(form).size() + 2)), std::string::npos)
        << request;
}

TEST_F(ShoreFile, MissingFileIsRefusedByTheLegacyOperationBeforeAnythingIsSent) {
    ExpectLegacyDoesNotExist(Folder() + "/none");
    ExpectLegacyDoesNotExist(Folder() + "/none/none");
    ExpectLegacyDoesNotExist("");
}

TEST_F(ShoreFile, DanglingLinkAndFileTakenForAFolderDoNotExistEither) {
    std::filesystem::create_symlink(Folder() + "/none", Folder() + "/link");
    ExpectLegacyDoesNotExist(Folder() + "/link");
    ExpectLegacyDoesNotExist(MakeFile("f", "x") + "/below");
}

TEST_F(ShoreFile, LinksThatEndNowhereAreAFilesystemError) {
    const std::string path = Folder() + "/loop";
    std::filesystem::create_symlink(path, path);
    ExpectLegacyCannotTell(path, boost::system::errc::too_many_symbolic_link_levels);
}

TEST_F(ShoreFile, NameTooLongIsAFilesystemError) {
    ExpectLegacyCannotTell(Folder() + "/" + std::string(256, 'n'),
                           boost::system::errc::filename_too_long);
}

TEST_F(ShoreFile, MissingFileFailsInTheTransferOfTheCurrentOperation) {
    ExpectReadError(Folder() + "/none");
}

TEST_F(ShoreFile, StatusIsCheckedUnderEachOperationsLabel) {
    const ScriptedServer server(StatusReply("507 Full"));
    HalcyrREST client(server.Address(), logger, false);
    const std::string path = MakeFile("f", "x");
    const std::string message = ", the HTTP header did not return OK: HTTP/1.1 507 Full";
    ExpectThrows<std::runtime_error>([&] { client.SendFileToShoreLegacy("P1", path, ""); },
                                     "For Send File to Shore Legacy" + message);
    ExpectThrows<std::runtime_error>([&] { client.SendFileToShore("P1", path, ""); },
                                     "For Send File to Shore" + message);
    ExpectThrows<std::runtime_error>([&] { client.SendRawPacketToShore("P1", "x"); },
                                     "For Send Raw Packet to Shore" + message);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
