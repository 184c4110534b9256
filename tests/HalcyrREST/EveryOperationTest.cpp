// What all operations have in common, shown for each of them.

#include "HalcyrREST/ClientTest.h"
#include "HalcyrREST/Operations.h"
#include "support/ClosedPort.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

/// One operation, watched while it is called.
class Subject {
public:
    Subject(const Operation& watched, const std::string& uploadedFile)
        : operation(watched), file(uploadedFile) {}

    void Call(HalcyrREST& client) const {
        operation.call(client, "P1", file);
    }

    void Call(const std::string& address, bool verbose = false) {
        HalcyrREST client(address, logger, verbose);
        Call(client);
    }

    std::string Url(const std::string& address) const {
        return "http://" + address + operation.Target("P1");
    }

    /// A reply that satisfies it.
    std::string GoodReply() const {
        return OkReply(operation.ReplyBody());
    }

    /// Expects that libcurl's option was set to this and nothing else.
    void ExpectOption(int option, const std::string& value) const {
        const std::string call = "curl_easy_setopt " + std::to_string(option) + " ";
        EXPECT_EQ(interposer.CallsTo(call), std::vector<std::string>{call + value});
    }

    /// Expects a plain std::runtime_error for that reply, with the operation's label.
    void ExpectRefused(const std::string& reply, const std::string& message) {
        const ScriptedServer server(reply);
        ExpectThrows<std::runtime_error>([&] { Call(server.Address()); },
                                         "For " + operation.label + message);
    }

    const Operation operation;
    Interposer interposer;
    CapturingLogger logger;

private:
    const std::string file;
};

class EveryOperation : public CleanTest {
protected:
    /// Makes the check with each operation in turn.
    template <typename Check>
    void ForEach(const Check& check) {
        const std::string file = MakeFile("f.json", "{}");
        for (const Operation& operation : Operations()) {
            SCOPED_TRACE(operation.name);
            Subject subject(operation, file);
            check(subject);
            EXPECT_EQ(subject.interposer.Unreleased(), 0) << "libcurl's objects were left";
        }
    }
};

TEST_F(EveryOperation, MakesOneExchangeWithItsTarget) {
    ForEach([](Subject& subject) {
        const ScriptedServer server(subject.GoodReply());
        subject.Call(server.Address());
        const std::string line = (subject.operation.isUpload ? "POST " : "GET ") +
                                 subject.operation.Target("P1") + " HTTP/1.1\r\n";
        EXPECT_EQ(server.OnlyRequest().substr(0, line.size()), line);
        EXPECT_EQ(subject.interposer.CallsTo("curl_easy_init").size(), 1U);
        subject.ExpectOption(CURLOPT_URL, subject.Url(server.Address()));
    });
}

TEST_F(EveryOperation, ThrowsWithItsLabelForStatus500) {
    ForEach([](Subject& subject) {
        subject.ExpectRefused(
            StatusReply("500 Internal Server Error"),
            ", the HTTP header did not return OK: HTTP/1.1 500 Internal Server Error");
    });
}

TEST_F(EveryOperation, ThrowsWithItsLabelForAnInterimReply) {
    ForEach([](Subject& subject) {
        subject.ExpectRefused("HTTP/1.1 100 Continue\r\n\r\n" + subject.GoodReply(),
                              ", the HTTP header did not return OK: HTTP/1.1 100 Continue");
    });
}

TEST_F(EveryOperation, ThrowsWithItsLabelWithoutAnHttpLine) {
    ForEach([](Subject& subject) {
        subject.ExpectRefused("http/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK",
                              ", no HTTP header was returned");
    });
}

TEST_F(EveryOperation, RefusedConnectionIsCode7) {
    ForEach([](Subject& subject) {
        const ClosedPort port;
        ExpectEasyError([&] { subject.Call(port.Address()); }, "curl_easy_perform",
                        CURLE_COULDNT_CONNECT);
    });
}

TEST_F(EveryOperation, ConnectionClosedWithoutAReplyIsCode52) {
    ForEach([](Subject& subject) {
        const ScriptedServer server(Script{ReadRequest()});
        ExpectEasyError([&] { subject.Call(server.Address()); }, "curl_easy_perform",
                        CURLE_GOT_NOTHING);
    });
}

TEST_F(EveryOperation, AddressThatIsNoUrlIsCode3) {
    ForEach([](Subject& subject) {
        ExpectEasyError([&] { subject.Call("a b"); }, "curl_easy_perform", CURLE_URL_MALFORMAT);
    });
}

TEST_F(EveryOperation, RefusedOptionIsTold) {
    ForEach([](Subject& subject) {
        subject.interposer.Fail("curl_easy_setopt", CURLE_UNKNOWN_OPTION, 5);
        ExpectEasyError([&] { subject.Call("h:1"); }, "curl_easy_setopt", CURLE_UNKNOWN_OPTION);
    });
}

TEST_F(EveryOperation, RefusedFormPartIsTold) {
    ForEach([](Subject& subject) {
        if (subject.operation.isUpload) {
            subject.interposer.Fail("curl_formadd", 2, 2);
            ExpectFormError([&] { subject.Call("h:1"); }, 2);
        }
    });
}

TEST_F(EveryOperation, TransferLayersOtherExceptionsPass) {
    ForEach([](Subject& subject) {
        const auto call = [&] {
            subject.Call("h:1");
        };
        subject.interposer.SkipPerform();
        subject.interposer.SetConnectTime(0.0);
        ExpectThrows<CurlUtils::ConnectionFailure>(call,
                                                   "Failed to connect to " + subject.Url("h:1"));
        subject.interposer.SetConnectTime(0.001);
        ExpectThrows<CurlUtils::ServerDidNotRespond>(call,
                                                     "No response from " + subject.Url("h:1"));
        subject.interposer.Fail("curl_easy_init");
        ExpectThrows<std::runtime_error>(call, "curl_easy_init() failed");
    });
}

TEST_F(EveryOperation, LimitsAre10And300And301Seconds) {
    ForEach([](Subject& subject) {
        const ScriptedServer server(subject.GoodReply());
        subject.Call(server.Address());
        subject.ExpectOption(CURLOPT_CONNECTTIMEOUT, "10");
        subject.ExpectOption(CURLOPT_TIMEOUT, "301");
        subject.ExpectOption(CURLOPT_FTP_RESPONSE_TIMEOUT, "300");
    });
}

TEST_F(EveryOperation, VerboseFlagShowsTheExchangeOnStandardError) {
    ForEach([](Subject& subject) {
        const ScriptedServer server(subject.GoodReply());
        CaptureStderr();
        subject.Call(server.Address(), true);
        const std::string trace = GetCapturedStderr();
        subject.ExpectOption(CURLOPT_VERBOSE, "1");
        EXPECT_NE(trace.find(subject.operation.Target("P1")), std::string::npos) << trace;
    });
}

TEST_F(EveryOperation, WithoutTheVerboseFlagStandardErrorIsSilent) {
    ForEach([](Subject& subject) {
        const ScriptedServer server(subject.GoodReply());
        CaptureStderr();
        subject.Call(server.Address(), false);
        EXPECT_EQ(GetCapturedStderr(), "");
        if (subject.operation.isUpload) {
            EXPECT_EQ(subject.interposer.CallsTo("curl_easy_setopt 41 "),
                      std::vector<std::string>());
        } else {
            subject.ExpectOption(CURLOPT_VERBOSE, "0");
        }
    });
}

TEST_F(EveryOperation, LoggerWithoutLevelsGetsTheGetLineOnly) {
    ForEach([](Subject& subject) {
        const ScriptedServer server(subject.GoodReply());
        subject.Call(server.Address());
        EXPECT_EQ(subject.logger.Text(), subject.operation.isUpload
                                             ? ""
                                             : "HTTP GET " + subject.Url(server.Address()) + "\n");
    });
}

TEST_F(EveryOperation, FailureLeavesTheClientUsable) {
    ForEach([](Subject& subject) {
        const ScriptedServer server({Reply(StatusReply("404 Not Found")), Script{ReadRequest()},
                                     Reply(subject.GoodReply())});
        HalcyrREST client(server.Address(), subject.logger, false);
        EXPECT_THROW(subject.Call(client), std::runtime_error);
        EXPECT_THROW(subject.Call(client), CurlUtils::CurlEasyException);
        EXPECT_NO_THROW(subject.Call(client));
        EXPECT_EQ(server.Requests().size(), 3U);
    });
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
