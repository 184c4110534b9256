#include "CurlUtils/UploadForm.h"

#include <MirrinFramework/ByteArray.h>
#include <TavoRemotingLib/CurlUtils.h>

#include <ostream>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

namespace {

using MirrinFramework::ByteArray;
using MirrinFramework::Logger;

/// Dumps all of a short content. Of a long one, the first 2048 bytes and a tail of 2048 to 2062,
/// which begins on a row of the whole content's dump (15 bytes to a row).
void DumpContent(const ByteArray& bytes, std::ostream& out) {
    constexpr std::size_t wholeLimit = 4096;
    constexpr std::size_t partSize = 2048;
    constexpr std::size_t rowSize = 15;
    if (bytes.Size() <= wholeLimit) {
        out << bytes.ToStringSplitView() << std::endl;
        return;
    }
    const std::size_t tail = rowSize * ((bytes.Size() - partSize) / rowSize);
    out << bytes.SubArray(0, partSize).ToStringSplitView() << std::endl << "..." << std::endl;
    out << bytes.SubArray(tail, bytes.Size() - tail).ToStringSplitView() << std::endl;
}

void LogRequest(Logger& logger, const std::string& url, const std::string& shown) {
    if (!logger.IsLevelEnabled(7)) {
        return;
    }
    // The outer lock keeps the request line and the dump together; the line takes its own.
    const Logger::Locked locked(logger);
    *Logger::Locked(logger) << "HTTP POST " << url << std::endl;
    ByteArray bytes;
    bytes.InitFromLiteralString(shown);
    DumpContent(bytes, *locked);
}

} // namespace

PostFile2::PostFile2(const std::string& requestUrl)
    : CurlOperationBase(requestUrl), formPost(nullptr), formLast(nullptr), headerList(nullptr) {}

// Delegates, so that the destructor runs and frees everything when a later step throws.
PostFile2::PostFile2(const std::string& requestUrl, const std::string& name,
                     const std::string& content, Logger& logger, bool contentIsFileName,
                     bool verbose, long timeoutSeconds)
    : PostFile2(requestUrl) {
    LogRequest(logger, url, contentIsFileName ? name : content);
    // With the zero byte behind the text, which is part of the upload's format.
    const FormAddFileCopyFromString file(formPost, formLast, content.c_str(), content.size() + 1,
                                         contentIsFileName);
    InitCurl(false);
    headerList = HeadersWithoutExpect();
    SetUploadOptions(formPost, headerList, verbose, timeoutSeconds);
    Perform();
    LogReply(logger);
}

PostFile2::~PostFile2() {
    FreeUpload(formPost, headerList);
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
