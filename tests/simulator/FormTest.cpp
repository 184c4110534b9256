#include "wire/Form.h"
#include "support/Wire.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

/// What reading a form gives: the file, a bar and the file's name, or the refusal.
std::string Read(const std::string& body,
                 const std::string& type = "multipart/form-data; boundary=BOUNDARY",
                 std::size_t limit = 1000) {
    std::istringstream in(body);
    Request request("POST", "/xp", in);
    request.headers = {{"Content-Type", type}};
    std::ostringstream file;
    try {
        const std::string fileName = ReadForm(request, file, limit);
        return file.str() + "|" + fileName;
    } catch (const Refusal& refusal) {
        return std::to_string(refusal.status) + " " + refusal.what();
    }
}

std::string Part(const std::string& header, const std::string& content) {
    return "--BOUNDARY\r\n" + header + "\r\n\r\n" + content + "\r\n";
}

std::string Field(const std::string& name) {
    return Part("Content-Disposition: form-data; name=\"" + name + "\"", name);
}

TEST(Form, GivesTheFileByteForByte) {
    const std::string contents[] = {
        "",
        "plain",
        std::string("a\0b\xff", 4),
        "\r\n",
        "\r",
        "\n--BOUNDARY",
        "\r\r\n--BOUNDAR",
        "\r\n--BOUNDAR\r\n--BOUNDAR",
        "--BOUNDARY--",
        "x\r\n-\r\n--\r\n--B\n",
    };
    for (const std::string& content : contents) {
        EXPECT_EQ(Read(FormText(content, "/tmp/n")), content + "|/tmp/n");
    }
}

TEST(Form, TakesPartsInAnyOrderAndUnknownOnes) {
    EXPECT_EQ(Read("preamble\r\n" + Field("submit") + Field("more") + Field("filename") +
                   Field("file") + "--BOUNDARY--"),
              "file|filename");
    EXPECT_EQ(Read(FormText("f", "n"), "Multipart/Form-Data; boundary=\"BOUNDARY\""), "f|n");
}

TEST(Form, RefusesEveryCutForm) {
    const std::string whole = FormText("content", "name");
    for (std::size_t size = 0; size < whole.size() - 2; ++size) {
        EXPECT_EQ(Read(whole.substr(0, size)), "400 The form ends before its last boundary")
            << size;
    }
    EXPECT_EQ(Read(whole.substr(0, whole.size() - 2)), "content|name");
}

TEST(Form, RefusesBrokenForms) {
    const std::string end = "--BOUNDARY--\r\n";
    EXPECT_EQ(Read(end), "400 Form part 'file' is missing");
    EXPECT_EQ(Read(Field("file") + Field("submit") + end), "400 Form part 'filename' is missing");
    EXPECT_EQ(Read(Field("file") + Field("filename") + end), "400 Form part 'submit' is missing");
    EXPECT_EQ(Read(Field("file") + Field("file") + end), "400 A form part comes twice");
    EXPECT_EQ(Read("--BOUNDARYx\r\n"), "400 A form boundary is followed by other text");
    EXPECT_EQ(Read(Part("no colon", "x") + end),
              "400 A form part has a header line without a colon");
    EXPECT_EQ(Read(Part("a: " + std::string(9000, 'x'), "") + end),
              "400 A form part has an overlong header line");
    EXPECT_EQ(Read(FormText("12345", "n"), "multipart/form-data; boundary=BOUNDARY", 4),
              "413 Form part is larger than 4 bytes");
    EXPECT_EQ(Read(FormText("12345", std::string(65537, 'n'))),
              "413 Form part is larger than 65536 bytes");
    for (const char* const type : {"", "text/plain", "multipart/form-data", "application/json"}) {
        EXPECT_EQ(Read(FormText("f", "n"), type),
                  "400 The content is not a multipart form with a boundary");
    }
}

TEST(Form, TextLosesExactlyItsLastZeroByte) {
    const std::pair<std::string, std::string> texts[] = {
        {std::string("abc\0", 4), "abc"},
        {std::string("\0\0", 2), std::string("\0", 1)},
        {"abc", "abc"},
        {"", ""},
    };
    for (const auto& [sent, text] : texts) {
        std::istringstream in(FormText(sent, "n"));
        Request request("POST", "/xp", in);
        request.headers = {{"content-type", "multipart/form-data; boundary=BOUNDARY"}};
        EXPECT_EQ(ReadTextForm(request), text);
    }
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
