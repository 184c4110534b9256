#include "CurlUtils/HostileReplies.h"

#include "CurlUtils/TransferTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class HostileReplyTo : public TransferTest, public ::testing::WithParamInterface<HostileReply> {
protected:
    /// What times out is given a second, the rest more than it can need.
    static long Limit() {
        return GetParam().code == CURLE_OPERATION_TIMEDOUT ? 0 : 20;
    }

    template <typename Transfer>
    void Expect(const Transfer& transfer) {
        if (GetParam().code != 0) {
            ExpectEasyError(transfer, "curl_easy_perform", GetParam().code);
            return;
        }
        const auto done = transfer();
        EXPECT_FALSE(done.headers.empty());
        EXPECT_EQ(done.body, GetParam().body);
    }
};

std::string NameOf(const ::testing::TestParamInfo<HostileReply>& reply) {
    return reply.param.name;
}

INSTANTIATE_TEST_SUITE_P(Is, HostileReplyTo, ::testing::ValuesIn(HostileReplies()), NameOf);

TEST_P(HostileReplyTo, HttpGet) {
    const ScriptedServer server(GetParam().script);
    Expect([&] { return Get(Url(server), Limit()); });
}

/// To save time, of the replies that end by the limit only two.
std::vector<HostileReply> SomeHostileReplies() {
    std::vector<HostileReply> some;
    for (const HostileReply& reply : HostileReplies()) {
        const std::string name = reply.name;
        if (reply.code != CURLE_OPERATION_TIMEDOUT || name == "Silence" ||
            name == "StallInTheBody") {
            some.push_back(reply);
        }
    }
    return some;
}

class HostileReplyToUpload : public HostileReplyTo {};

INSTANTIATE_TEST_SUITE_P(Is, HostileReplyToUpload, ::testing::ValuesIn(SomeHostileReplies()),
                         NameOf);

TEST_P(HostileReplyToUpload, PostFile2) {
    const ScriptedServer server(GetParam().script);
    Expect([&] { return Post2(Url(server), "abc", Limit()); });
}

/// Whatever libcurl's result: the first header line makes the transfer a done one.
TEST_P(HostileReplyToUpload, PostFile) {
    const ScriptedServer server(GetParam().script);
    const std::string url = Url(server);
    if (!GetParam().hasStatusLine) {
        ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { Post(url, "abc", Limit()); },
                                                     "No response from " + url);
        return;
    }
    const CurlUtils::PostFile post = Post(url, "abc", Limit());
    ASSERT_FALSE(post.headers.empty());
    const std::string start = post.headers.front().substr(0, 5);
    EXPECT_TRUE(start == "HTTP/" || start == "http/") << post.headers.front();
    if (GetParam().code == 0) {
        EXPECT_EQ(post.body, GetParam().body);
    }
}

class InMidUpload : public TransferTest {
protected:
    void SetUp() override {
        TransferTest::SetUp();
        // More than the connection's buffers take.
        content.resize(16777216, 'x');
    }

    std::string content;
};

const std::string tooLarge = "HTTP/1.1 413 Content Too Large\r\nContent-Length: 4\r\n\r\nmuch";

/// The reset is met by whichever of receiving and sending comes next.
template <typename Action>
void ExpectEndedByReset(const Action& action) {
    try {
        action();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const CurlUtils::CurlEasyException& e) {
        EXPECT_TRUE(e.code == CURLE_RECV_ERROR || e.code == CURLE_SEND_ERROR) << e.what();
    }
}

TEST_F(InMidUpload, ResetIsACurlEasyException) {
    const ScriptedServer server(Script{ReadHead(), Reset()});
    ExpectEndedByReset([&] { Post2(Url(server), content); });
}

TEST_F(InMidUpload, ResetIsServerDidNotRespondInPostFile) {
    const ScriptedServer server(Script{ReadHead(), Reset()});
    ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { Post(Url(server), content); },
                                                 "No response from " + Url(server));
}

TEST_F(InMidUpload, EarlyRefusalIsTheReply) {
    const ScriptedServer server(Script{ReadHead(), Send(tooLarge), Stall()});
    const CurlUtils::PostFile2 post = Post2(Url(server), content);
    EXPECT_EQ(post.headers.front(), "HTTP/1.1 413 Content Too Large\r\n");
    EXPECT_EQ(post.body, "much");
}

TEST_F(InMidUpload, EarlyRefusalIsTheReplyInPostFile) {
    const ScriptedServer server(Script{ReadHead(), Send(tooLarge), Stall()});
    const CurlUtils::PostFile post = Post(Url(server), content);
    EXPECT_EQ(post.headers.front(), "HTTP/1.1 413 Content Too Large\r\n");
    EXPECT_EQ(post.body, "much");
}

TEST_F(InMidUpload, ServerThatNeverReadsIsATimeout) {
    const ScriptedServer server(Script{ReadHead(), Stall()});
    ExpectEasyError([&] { Post2(Url(server), content, 0); }, "curl_easy_perform",
                    CURLE_OPERATION_TIMEDOUT);
}

TEST_F(InMidUpload, ServerThatNeverReadsIsServerDidNotRespondInPostFile) {
    const ScriptedServer server(Script{ReadHead(), Stall()});
    ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { Post(Url(server), content, 0); },
                                                 "No response from " + Url(server));
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
