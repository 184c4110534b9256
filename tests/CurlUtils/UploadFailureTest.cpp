#include "CurlUtils/Uploads.h"
#include "support/AllocationLimit.h"

#include <cstdlib>
#include <new>
#include <system_error>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Lines = std::vector<std::string>;

/// What makes both upload classes fail alike, up to the performing.
template <typename Upload>
class UploadFailureOf : public TransferTest {
protected:
    static void Send() {
        Upload::Send("http://127.0.0.1/x", "abc", false);
    }

    /// What is released once the handles are made, the form and the list first.
    static Lines With(Lines first) {
        if (Upload::isMulti) {
            first.push_back("curl_multi_cleanup");
        }
        first.push_back("curl_easy_cleanup");
        return first;
    }
};

TYPED_TEST_SUITE(UploadFailureOf, BothUploads, UploadNames);

TYPED_TEST(UploadFailureOf, SuccessReleasesFormListAndHandlesInThatOrder) {
    const ScriptedServer server(OkReply(""));
    TypeParam::Send(this->Url(server), "abc", false);
    EXPECT_EQ(Releases(this->interposer), this->With({"curl_formfree", "curl_slist_free_all"}));
}

TYPED_TEST(UploadFailureOf, FirstPartRefusedLeavesNoForm) {
    this->interposer.Fail("curl_formadd", 2, 1);
    ExpectFormError([&] { this->Send(); }, 2);
    EXPECT_EQ(this->interposer.Calls().size(), 1U);
}

TYPED_TEST(UploadFailureOf, LaterPartRefusedFreesTheForm) {
    for (int nth = 2; nth <= 3; ++nth) {
        const std::size_t before = this->interposer.Calls().size();
        this->interposer.Fail("curl_formadd", nth + 1, nth);
        ExpectFormError([&] { this->Send(); }, nth + 1);
        EXPECT_EQ(this->interposer.Calls().size() - before, static_cast<std::size_t>(nth) + 1);
        EXPECT_EQ(Releases(this->interposer, before), Lines{"curl_formfree"});
        EXPECT_EQ(this->interposer.Unreleased(), 0);
    }
}

TYPED_TEST(UploadFailureOf, TemporaryFileThatCannotBeMadeIsASystemError) {
    setenv("TMPDIR", (this->Folder() + "/none").c_str(), 1);
    try {
        this->Send();
        ADD_FAILURE();
    } catch (const std::system_error& e) {
        EXPECT_EQ(e.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_EQ(this->interposer.Calls(), Lines{});
}

TYPED_TEST(UploadFailureOf, ContentThatCannotBeCopiedIsABadAlloc) {
    const std::string content(200000, 'x');
    const AllocationLimit limit(100000);
    ExpectThrows<std::bad_alloc>([&] { TypeParam::Send("http://127.0.0.1/x", content, false); },
                                 "std::bad_alloc");
    EXPECT_EQ(this->interposer.Calls(), Lines{});
}

TYPED_TEST(UploadFailureOf, NoEasyHandleFreesTheForm) {
    this->interposer.Fail("curl_easy_init");
    ExpectThrows<std::runtime_error>([&] { this->Send(); }, "curl_easy_init() failed");
    EXPECT_EQ(Releases(this->interposer), Lines{"curl_formfree"});
    EXPECT_EQ(this->interposer.CallsTo("curl_slist"), Lines{});
}

TYPED_TEST(UploadFailureOf, EachOptionRefusedEndsTheUpload) {
    for (std::size_t nth = 1; nth <= 11; ++nth) {
        const std::size_t before = this->interposer.Calls().size();
        const std::size_t options = this->interposer.CallsTo("curl_easy_setopt").size();
        this->interposer.Fail("curl_easy_setopt", CURLE_UNKNOWN_OPTION, static_cast<int>(nth));
        ExpectEasyError([&] { this->Send(); }, "curl_easy_setopt", CURLE_UNKNOWN_OPTION);
        EXPECT_EQ(this->interposer.CallsTo("curl_easy_setopt").size() - options, nth);
        // The first four are the callbacks, set before there is a header list.
        EXPECT_EQ(Releases(this->interposer, before),
                  this->With(nth <= 4 ? Lines{"curl_formfree"}
                                      : Lines{"curl_formfree", "curl_slist_free_all"}));
        EXPECT_EQ(this->interposer.Unreleased(), 0);
        EXPECT_EQ(CountEntries(this->TempFolder()), 0U);
    }
    EXPECT_EQ(this->interposer.CallsTo("curl_easy_perform"), Lines{});
    EXPECT_EQ(this->interposer.CallsTo("curl_multi_add_handle"), Lines{});
}

TYPED_TEST(UploadFailureOf, NoOptionComesBehindTheEleventh) {
    const ScriptedServer server(OkReply(""));
    this->interposer.Fail("curl_easy_setopt", CURLE_UNKNOWN_OPTION, 12);
    EXPECT_NO_THROW(TypeParam::Send(this->Url(server), "abc", false));
}

TYPED_TEST(UploadFailureOf, NoHeaderListIsABadAlloc) {
    this->interposer.Fail("curl_slist_append");
    ExpectThrows<std::bad_alloc>([&] { this->Send(); }, "std::bad_alloc");
    EXPECT_EQ(this->interposer.Calls().back(), "curl_easy_cleanup");
    EXPECT_EQ(this->interposer.CallsTo("curl_slist"), Lines{"curl_slist_append Expect:"});
    EXPECT_EQ(Releases(this->interposer), this->With({"curl_formfree"}));
}

TYPED_TEST(UploadFailureOf, GetinfoFails) {
    const ScriptedServer server(OkReply(""));
    this->interposer.Fail("curl_easy_getinfo", CURLE_BAD_FUNCTION_ARGUMENT);
    ExpectEasyError([&] { TypeParam::Send(this->Url(server), "abc", false); },
                    "curl_easy_getinfo()", CURLE_BAD_FUNCTION_ARGUMENT);
    EXPECT_EQ(Releases(this->interposer), this->With({"curl_formfree", "curl_slist_free_all"}));
}

TYPED_TEST(UploadFailureOf, ExchangeWithoutAConnectionIsAConnectionFailure) {
    // libcurl reads a file without connecting anywhere.
    const std::string url = "file://" + this->MakeFile("reply", "text");
    ExpectThrows<CurlUtils::ConnectionFailure>([&] { TypeParam::Send(url, "abc", false); },
                                               "Failed to connect to " + url);
    EXPECT_EQ(Releases(this->interposer), this->With({"curl_formfree", "curl_slist_free_all"}));
}

TYPED_TEST(UploadFailureOf, ReplyWithoutHeaderLinesIsServerDidNotRespond) {
    // A dictionary's answer is a body without header lines.
    const ScriptedServer server(Script{Send("text"), HalfClose(), Stall()});
    const std::string url = "dict://" + server.Address() + "/d:x";
    ExpectThrows<CurlUtils::ServerDidNotRespond>([&] { TypeParam::Send(url, "abc", false); },
                                                 "No response from " + url);
    EXPECT_EQ(Releases(this->interposer), this->With({"curl_formfree", "curl_slist_free_all"}));
}

TYPED_TEST(UploadFailureOf, ConnectTimeOfZeroFailsAReplyWithHeaders) {
    const ScriptedServer server(OkReply(""));
    const std::string url = this->Url(server);
    for (const double seconds : {0.0, -1.0}) {
        this->interposer.SetConnectTime(seconds);
        ExpectThrows<CurlUtils::ConnectionFailure>([&] { TypeParam::Send(url, "abc", false); },
                                                   "Failed to connect to " + url);
    }
}

TYPED_TEST(UploadFailureOf, ConnectTimeIsTestedBeforeTheHeaders) {
    const ScriptedServer server(Script{Send("text"), HalfClose(), Stall()});
    const std::string url = "dict://" + server.Address() + "/d:x";
    this->interposer.SetConnectTime(0.0);
    ExpectThrows<CurlUtils::ConnectionFailure>([&] { TypeParam::Send(url, "abc", false); },
                                               "Failed to connect to " + url);
}

TYPED_TEST(UploadFailureOf, LeastConnectTimePasses) {
    const ScriptedServer server(OkReply(""));
    this->interposer.SetConnectTime(1e-6);
    EXPECT_NO_THROW(TypeParam::Send(this->Url(server), "abc", false));
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
