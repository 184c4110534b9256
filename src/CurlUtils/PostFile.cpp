#include "CurlUtils/UploadForm.h"

#include <TavoRemotingLib/CurlUtils.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

PostFile::PostFile(const std::string& requestUrl)
    : CurlOperationBase(requestUrl), formPost(nullptr), formLast(nullptr), headerList(nullptr) {}

// Delegates, so that the destructor runs and frees everything when a later step throws.
PostFile::PostFile(const std::string& requestUrl, const std::string&, const std::string& content,
                   bool contentIsFileName, bool verbose, long timeoutSeconds)
    : PostFile(requestUrl) {
    // With the zero byte behind the text, which is part of the upload's format.
    const FormAddFileCopyFromString file(formPost, formLast, content.c_str(), content.size() + 1,
                                         contentIsFileName);
    InitCurl(true);
    headerList = HeadersWithoutExpect();
    SetUploadOptions(formPost, headerList, verbose, timeoutSeconds);
    ThrowMulti(curl_multi_add_handle(multi, curl), "curl_multi_add_handle()");
    int running = 0;
    ThrowMulti(curl_multi_perform(multi, &running), "curl_multi_perform()");
    do {
        Wait();
        ThrowMulti(curl_multi_perform(multi, &running), "curl_multi_perform()");
    } while (running != 0);
    // The transfer's own result is deliberately not asked for: a reply that broke off after its
    // first header line counts, and its reader judges it.
    ThrowUnlessConnected();
    ThrowUnlessAnswered();
}

PostFile::~PostFile() {
    FreeUpload(formPost, headerList);
}

void PostFile::Wait() {
    MyTimeval timeout;
    MyFdSet read;
    MyFdSet write;
    MyFdSet exception;
    int maxFd = -1;
    long curlTimeoutMs = -1;
    // The label's spelling is part of the message that hosts know.
    ThrowMulti(curl_multi_timeout(multi, &curlTimeoutMs), "curl_multi_timoeut");
    timeout.Reset(curlTimeoutMs);
    ThrowMulti(curl_multi_fdset(multi, &read, &write, &exception, &maxFd), "curl_multi_fdset()");
    if (select(maxFd + 1, &read, &write, &exception, &timeout) == -1) {
        throw std::runtime_error("select() failed while performing file transfer");
    }
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
