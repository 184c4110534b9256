#include "CurlUtils/Uploads.h"
#include "support/Form.h"
#include "support/Requests.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using Lines = std::vector<std::string>;

/// What both upload classes send.
template <typename Upload>
class UploadRequestOf : public TransferTest {
protected:
    /// The request with which the content, or the file of that path, is uploaded.
    static std::string Sent(const std::string& content, bool contentIsFileName) {
        const ScriptedServer server(OkReply(""));
        Upload::Send(Url(server), content, contentIsFileName);
        return server.OnlyRequest();
    }
    static std::string FilePart(const std::string& content) {
        return FormParts(Sent(content, false)).at(0).body;
    }
};

TYPED_TEST_SUITE(UploadRequestOf, BothUploads, UploadNames);

TYPED_TEST(UploadRequestOf, ContentIsAFileOfItsBytesAndOneZeroByte) {
    const ScriptedServer server(OkReply(""));
    TypeParam::Send(this->Url(server), "abc", false);
    const std::string request = server.OnlyRequest();
    const std::string boundary = FormBoundary(request);
    const std::vector<FormPart> parts = FormParts(request);
    ASSERT_EQ(parts.size(), 3U);
    const std::string path = parts[1].body;
    EXPECT_EQ(parts[0].body, std::string("abc\0", 4));
    EXPECT_EQ(path.substr(0, path.rfind('/')), this->TempFolder());
    EXPECT_EQ(path.size(), (this->TempFolder() + "/mirrin-0123456789").size());
    EXPECT_EQ(parts[2].body, "send");
    EXPECT_EQ(parts[0].head, "Content-Disposition: form-data; name=\"file\"; filename=\"" +
                                 path.substr(path.rfind('/') + 1) +
                                 "\"\r\nContent-Type: application/octet-stream\r\n");
    EXPECT_EQ(parts[1].head, "Content-Disposition: form-data; name=\"filename\"\r\n");
    EXPECT_EQ(parts[2].head, "Content-Disposition: form-data; name=\"submit\"\r\n");
}

TYPED_TEST(UploadRequestOf, HeadHasFiveHeaderLinesAndNoExpectation) {
    const ScriptedServer server(OkReply(""));
    TypeParam::Send(this->Url(server), "abc", false);
    const std::string request = server.OnlyRequest();
    const std::string head = RequestHead(request);
    EXPECT_EQ(head, "POST /x HTTP/1.1\r\nHost: " + server.Address() +
                        "\r\nAccept: */*\r\nContent-Length: " +
                        std::to_string(request.size() - head.size() - 2) +
                        "\r\nContent-Type: multipart/form-data; boundary=" + FormBoundary(request) +
                        "\r\n");
}

TYPED_TEST(UploadRequestOf, GivenFileIsUploadedUnchangedUnderItsPathAsWritten) {
    const ScriptedServer server(OkReply(""));
    const std::string content("no zero byte behind this\0 or within", 35);
    this->MakeFile("given.bin", content);
    const std::string path = this->Folder() + "/.//given.bin";
    TypeParam::Send(this->Url(server), path, true);
    const std::string request = server.OnlyRequest();
    EXPECT_EQ(request, UploadRequest(server.Address(), "/x", path, content, FormBoundary(request)));
}

TYPED_TEST(UploadRequestOf, PathEndsAtItsFirstZeroByte) {
    const std::string path = this->MakeFile("given", "theirs");
    const std::vector<FormPart> parts = FormParts(this->Sent(path + '\0' + "behind", true));
    EXPECT_EQ(parts.at(0).body, "theirs");
    EXPECT_EQ(parts.at(1).body, path);
}

TYPED_TEST(UploadRequestOf, FileNameIsEscapedInThePartsHeadOnly) {
    const std::string path = this->MakeFile("a \"b\" \xC3\xA4.bin", "theirs");
    const std::vector<FormPart> parts = FormParts(this->Sent(path, true));
    EXPECT_EQ(parts.at(0).head, "Content-Disposition: form-data; name=\"file\"; "
                                "filename=\"a %22b%22 \xC3\xA4.bin\"\r\n"
                                "Content-Type: application/octet-stream\r\n");
    EXPECT_EQ(parts.at(1).body, path);
}

TYPED_TEST(UploadRequestOf, EmptyGivenFileIsAnEmptyPart) {
    EXPECT_EQ(FormParts(this->Sent(this->MakeFile("empty", ""), true)).at(0).body, "");
}

TYPED_TEST(UploadRequestOf, EmptyContentIsOneZeroByte) {
    EXPECT_EQ(this->FilePart(""), std::string(1, '\0'));
}

TYPED_TEST(UploadRequestOf, ContentWithZeroBytesTravelsWhole) {
    EXPECT_EQ(this->FilePart(std::string("\0a\0\0b", 5)), std::string("\0a\0\0b\0", 6));
}

TYPED_TEST(UploadRequestOf, ContentThatLooksLikeAFormIsOnlyContent) {
    const std::string content = "\r\n--boundary--\r\nContent-Disposition: form-data\r\n\r\n%00%41";
    EXPECT_EQ(this->FilePart(content), content + '\0');
}

TYPED_TEST(UploadRequestOf, LargeContentOfOddSizeTravelsByteForByte) {
    const ScriptedServer server(OkReply("done"));
    const std::string content = PositionedBytes(1024 * 1024 + 7);
    EXPECT_EQ(TypeParam::Send(this->Url(server), content, false).body, "done");
    const std::string request = server.OnlyRequest();
    const std::string path = FormParts(request).at(1).body;
    EXPECT_TRUE(request ==
                UploadRequest(server.Address(), "/x", path, content + '\0', FormBoundary(request)));
}

TYPED_TEST(UploadRequestOf, LargeGivenFileTravelsByteForByte) {
    const std::string content = PositionedBytes(1024 * 1024 + 7);
    EXPECT_TRUE(FormParts(this->Sent(this->MakeFile("large", content), true)).at(0).body ==
                content);
}

TYPED_TEST(UploadRequestOf, TargetTravelsAsItIsWritten) {
    const ScriptedServer server(OkReply(""));
    TypeParam::Send("http://" + server.Address() + "/xp?op=jar&id=%41+b", "abc", false);
    EXPECT_EQ(server.OnlyRequest().substr(0, 37), "POST /xp?op=jar&id=%41+b HTTP/1.1\r\nHo");
}

TYPED_TEST(UploadRequestOf, OptionsAreSetInTheirOrder) {
    const ScriptedServer server(OkReply(""));
    const std::string url = this->Url(server);
    TypeParam::Send(url, "abc", false, false, 300);
    EXPECT_EQ(
        this->interposer.CallsTo("curl_easy_setopt"),
        (Lines{"curl_easy_setopt 20011", "curl_easy_setopt 20079", "curl_easy_setopt 10029",
               "curl_easy_setopt 10001", "curl_easy_setopt 10002 " + url, "curl_easy_setopt 99 1",
               "curl_easy_setopt 78 10", "curl_easy_setopt 13 301", "curl_easy_setopt 112 300",
               "curl_easy_setopt 10023", "curl_easy_setopt 10024"}));
}

TYPED_TEST(UploadRequestOf, VerboseIsSetOnlyWhenTrueAndBeforeTheHeaders) {
    const ScriptedServer server(OkReply(""));
    ::testing::internal::CaptureStderr();
    TypeParam::Send(this->Url(server), "abc", false, true);
    const std::string trace = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(trace.find("> POST /x HTTP/1.1\r\n"), std::string::npos) << trace;
    const Lines options = this->interposer.CallsTo("curl_easy_setopt");
    ASSERT_EQ(options.size(), 12U);
    EXPECT_EQ(options[8], "curl_easy_setopt 112 20");
    EXPECT_EQ(options[9], "curl_easy_setopt 41 1");
    EXPECT_EQ(options[10], "curl_easy_setopt 10023");
}

TYPED_TEST(UploadRequestOf, TemporaryFileIsGoneWhenTheTransferIsThere) {
    const ScriptedServer server(OkReply("reply"));
    const auto post = TypeParam::Send(this->Url(server), "abc", false);
    EXPECT_EQ(CountEntries(this->TempFolder()), 0U);
    EXPECT_EQ(post.body, "reply");
    EXPECT_EQ(Releases(this->interposer), Lines{});
}

TYPED_TEST(UploadRequestOf, GivenFileStays) {
    const std::string path = this->MakeFile("given", "theirs");
    const std::size_t files = CountEntries(this->Folder());
    this->Sent(path, true);
    EXPECT_EQ(CountEntries(this->Folder()), files);
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
