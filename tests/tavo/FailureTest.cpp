#include "core/Failure.h"
#include "support/CleanTest.h"
#include "support/ClosedPort.h"
#include "support/FullListener.h"
#include "support/Program.h"
#include "support/ScriptedServer.h"
#include "support/TavoProcess.h"

#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <arpa/inet.h>
#include <cerrno>
#include <json/value.h>
#include <sys/socket.h>
#include <typeinfo>
#include <unistd.h>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

using namespace TavoRemotingLib::Testing;
using TavoRemotingLib::HalcyrREST;
namespace CurlUtils = TavoRemotingLib::CurlUtils;
using Texts = std::vector<std::string>;

std::string Told(const std::exception& error, ExitCode code) {
    const Failure failure = FailureOf(error, "host:1");
    EXPECT_EQ(static_cast<int>(failure.code), static_cast<int>(code)) << failure.Line();
    return failure.Line();
}

TEST(FailureOfTest, LibcurlsCodes) {
    const auto told = [](CURLcode code, ExitCode expected) {
        return Told(CurlUtils::CurlEasyException(code, "MESSAGE"), expected);
    };
    EXPECT_EQ(told(CURLE_COULDNT_RESOLVE_PROXY, ExitCode::NoConnection),
              "the proxy for host:1 has no address: MESSAGE; check http_proxy and all_proxy in the "
              "environment");
    EXPECT_EQ(told(CURLE_COULDNT_RESOLVE_HOST, ExitCode::NoConnection),
              "the name of host:1 has no address: MESSAGE; check --server");
    EXPECT_EQ(told(CURLE_COULDNT_CONNECT, ExitCode::NoConnection),
              "no connection to host:1: MESSAGE; check --server, and that the server runs");
    EXPECT_EQ(told(CURLE_SEND_ERROR, ExitCode::NoConnection),
              "the connection to host:1 broke: MESSAGE; try again");
    EXPECT_EQ(told(CURLE_OPERATION_TIMEDOUT, ExitCode::TimedOut),
              "no answer from host:1 in time: MESSAGE; try again");
    EXPECT_EQ(told(CURLE_URL_MALFORMAT, ExitCode::Usage),
              "'host:1' is not an address: MESSAGE; write it as HOST or HOST:PORT");
    EXPECT_EQ(told(CURLE_READ_ERROR, ExitCode::Local),
              "the file to send to host:1 cannot be read: MESSAGE; check the file");
    EXPECT_EQ(told(CURLE_OUT_OF_MEMORY, ExitCode::BadReply),
              "too much from host:1, or no memory: MESSAGE; see it with --trace");
    for (const CURLcode code : {CURLE_GOT_NOTHING, CURLE_RECV_ERROR, CURLE_PARTIAL_FILE,
                                CURLE_UNSUPPORTED_PROTOCOL, CURLE_WEIRD_SERVER_REPLY}) {
        EXPECT_EQ(told(code, ExitCode::BadReply),
                  "broken reply from host:1: MESSAGE; see it with --trace");
    }
}

TEST(FailureOfTest, TheLibrarysExceptions) {
    EXPECT_EQ(Told(CurlUtils::ConnectionFailure("M"), ExitCode::NoConnection),
              "no connection to host:1: M; check --server, and that the server runs");
    EXPECT_EQ(Told(HalcyrREST::ServerTimeoutOnRequest("M"), ExitCode::TimedOut),
              "nothing happened at host:1 in the poll's time; poll again");
    const std::string notUnderstood =
        "the reply of host:1 is not understood: M 1 M 2; see it with -vv";
    const std::string message = "M 1 \n\t M 2\n";
    EXPECT_EQ(Told(CurlUtils::ServerDidNotRespond(message), ExitCode::BadReply), notUnderstood);
    EXPECT_EQ(Told(HalcyrREST::EmptyCommandException(message), ExitCode::BadReply), notUnderstood);
    EXPECT_EQ(Told(HalcyrREST::JSONParsingError(message), ExitCode::BadReply), notUnderstood);
    EXPECT_EQ(Told(HalcyrREST::RemoteCommandFormatError(message), ExitCode::BadReply),
              notUnderstood);
    EXPECT_EQ(Told(std::runtime_error(message), ExitCode::BadReply), notUnderstood);
    EXPECT_EQ(Told(Json::RuntimeError(message), ExitCode::BadReply), notUnderstood);
    EXPECT_EQ(Told(Json::LogicError(message), ExitCode::BadReply), notUnderstood);
    const std::string unprepared =
        "cannot prepare what is to be sent: M; check TMPDIR, free memory and room";
    EXPECT_EQ(
        Told(CurlUtils::CurlFormException(static_cast<CURLFORMcode>(1), "M"), ExitCode::Local),
        unprepared);
    EXPECT_EQ(Told(std::system_error(ENOSPC, std::generic_category(), "M"), ExitCode::Local),
              "cannot prepare what is to be sent: M: No space left on device; check TMPDIR, free "
              "memory and room");
    EXPECT_EQ(Told(std::bad_alloc(), ExitCode::Local),
              "cannot prepare what is to be sent: std::bad_alloc; check TMPDIR, free memory and "
              "room");
    EXPECT_EQ(Told(std::invalid_argument("M"), ExitCode::Local), "M; check the argument");
    EXPECT_EQ(Told(std::bad_cast(), ExitCode::Other), "std::bad_cast");
}

/// A command that talks to a server which plays these scripts.
class FailureTest : public CleanTest {
protected:
    /// SERVER stands for the address in what is told.
    Outcome Against(const std::string& address, const Texts& words) const {
        Texts all = {"-s", address, "-i", "P1"};
        all.insert(all.end(), words.begin(), words.end());
        Outcome outcome = RunTavo(all);
        for (std::size_t at = outcome.err.find(address); at != std::string::npos;
             at = outcome.err.find(address)) {
            outcome.err.replace(at, address.size(), "SERVER");
        }
        return outcome;
    }

    Outcome Play(const Script& script, const Texts& words) const {
        const ScriptedServer server(script);
        return Against(server.Address(), words);
    }

    Outcome Poll(const std::string& body) const {
        return Play(Reply(OkReply(body)), {"poll"});
    }
};

TEST_F(FailureTest, RefusalsAreCode1) {
    const std::string missing = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";
    EXPECT_EQ(Play(Reply(missing), {"off"}),
              (Outcome{1, "",
                       "tavo off: SERVER refused: HTTP/1.1 404 Not Found; see its answer "
                       "with -vv\n"}));
    EXPECT_EQ(Play(Reply(missing), {"respond", "t", "x"}),
              (Outcome{1, "",
                       "tavo respond: SERVER refused: HTTP/1.1 404 Not Found; see its "
                       "answer with -vv\n"}));
    EXPECT_EQ(Poll(R"({"error": "no \u001b[2J\nsuch payload"})"),
              (Outcome{1, "",
                       "tavo poll: SERVER could not serve the poll: no \\x1B[2J such "
                       "payload; poll again\n"}));
    EXPECT_EQ(Play(Reply(OkReply("it's ' for now")), {"power", "on"}),
              (Outcome{1, "",
                       "tavo power: SERVER answered 'it's ' for now' instead of OK; check "
                       "the switch's name\n"}));
}

TEST_F(FailureTest, NoConnectionIsCode3) {
    const ClosedPort closed;
    EXPECT_EQ(Against(closed.Address(), {"off"}),
              (Outcome{3, "",
                       "tavo off: no connection to SERVER: curl_easy_perform returned 7 "
                       "(Couldn't connect to server); check --server, and that the server "
                       "runs\n"}));
    EXPECT_EQ(Against("no..name:1", {"off"}),
              (Outcome{3, "",
                       "tavo off: the name of SERVER has no address: curl_easy_perform "
                       "returned 6 (Couldn't resolve host name); check --server\n"}));
    EXPECT_EQ(RunTavo(Call{{"off", "-s", "h:1", "-i", "P1"}, {"http_proxy=no..name:1"}}),
              (Outcome{3, "",
                       "tavo off: the proxy for h:1 has no address: curl_easy_perform "
                       "returned 5 (Couldn't resolve proxy name); check http_proxy and "
                       "all_proxy in the environment\n"}));
}

TEST_F(FailureTest, AddressesThatLibcurlRefusesAreCode2) {
    EXPECT_EQ(Against("h:99999", {"off"}),
              (Outcome{2, "",
                       "tavo off: 'SERVER' is not an address: curl_easy_perform returned 3 "
                       "(URL using bad/illegal format or missing URL); write it as HOST or "
                       "HOST:PORT\n"}));
    EXPECT_EQ(Against("[::1]:1", {"off"}).code, 3);
}

TEST_F(FailureTest, NothingTakesThePlaceOfAMissingStandardStream) {
    const ScriptedServer server(OkReply("OK"));
    Program shell(Redirected("<&- >&- 2>&-", TAVO_PATH,
                             {"off", "--trace", "-s", server.Address(), "-i", "P1"}));
    EXPECT_EQ(shell.Wait(), 6);
    EXPECT_EQ(server.OnlyRequest(), "GET /xp?op=off&id=P1 HTTP/1.1\r\nHost: " + server.Address() +
                                        "\r\nAccept: */*\r\n\r\n");
}

TEST_F(FailureTest, NoAnswerInTimeIsCode4) {
    const FullListener listener;
    EXPECT_EQ(Against(listener.Address(), {"off"}),
              (Outcome{4, "",
                       "tavo off: no answer from SERVER in time: curl_easy_perform returned "
                       "28 (Timeout was reached); try again\n"}));
}

TEST_F(FailureTest, BrokenRepliesAreCode5) {
    const auto broken = [](const std::string& message) {
        return Outcome{5, "",
                       "tavo script: broken reply from SERVER: curl_easy_perform returned " +
                           message + "; see it with --trace\n"};
    };
    const Texts script = {"script", "x"};
    EXPECT_EQ(Play({ReadRequest()}, script), broken("52 (Server returned nothing (no headers, no "
                                                    "data))"));
    EXPECT_EQ(Play({ReadRequest(), Reset()}, script),
              broken("56 (Failure when receiving data from the peer)"));
    EXPECT_EQ(
        Play({ReadRequest(), Send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nabc")}, script),
        broken("18 (Transferred a partial file)"));
    EXPECT_EQ(Play({ReadRequest(), Send("no HTTP at all\r\n\r\n")}, script),
              broken("1 (Unsupported protocol)"));
}

TEST_F(FailureTest, RepliesThatAreNotUnderstoodAreCode5) {
    const auto line = [](const std::string& message) {
        return Outcome{5, "",
                       "tavo poll: the reply of SERVER is not understood: " + message +
                           "; see it with -vv\n"};
    };
    EXPECT_EQ(Poll(""), line("The command returned was empty"));
    EXPECT_EQ(Poll("{"), line("* Line 1, Column 2 Missing '}' or object member name"));
    EXPECT_EQ(Poll("{}"),
              line("None of the expected conditions were satisfied in response to Poll"));
    EXPECT_EQ(Poll(R"({"commands": [1]})"),
              line("Non-object found in command item list at index 0 in response to Poll"));
    EXPECT_EQ(Poll(R"({"timeout": "x"})"), line("Value is not convertible to bool."));
}

TEST_F(FailureTest, TroubleOnThisSideIsCode6) {
    const Outcome noRoom =
        RunTavo(Call{{"send-packet", "x", "-s", "h", "-i", "P1"}, {"TMPDIR=/no/where"}});
    EXPECT_EQ(noRoom.code, 6);
    EXPECT_EQ(noRoom.err.rfind("tavo send-packet: cannot prepare what is to be sent: ", 0), 0U)
        << noRoom.err;
    EXPECT_NE(noRoom.err.find("No such file or directory; check TMPDIR, free memory and room\n"),
              std::string::npos)
        << noRoom.err;
    const ScriptedServer server(OkReply(""));
    std::string line;
    for (const std::string& word : CommandOf(TAVO_PATH)) {
        line += word + " ";
    }
    line += "off -s " + server.Address() + " -i P1 >/dev/full";
    Program shell({"bash", "-c", line});
    EXPECT_EQ(shell.Wait(), 6);
    EXPECT_EQ(shell.Errors(), "tavo off: cannot write to standard output: No space left on device; "
                              "check where it goes\n");
}

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
