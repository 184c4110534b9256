#include "CurlUtils/UploadForm.h"

#include "CurlUtils/TimeLimit.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <new>

// libcurl has deprecated its form functions, but the upload's layout is theirs. Every use of them
// is in this file, and only here is the compiler told to accept them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

namespace {

void AddPart(curl_httppost*& first, curl_httppost*& last, const char* name, CURLformoption option,
             const char* value) {
    ThrowFormAddError(
        curl_formadd(&first, &last, CURLFORM_COPYNAME, name, option, value, CURLFORM_END));
}

} // namespace

FormAddFileCopyFromString::FormAddFileCopyFromString(curl_httppost*& first, curl_httppost*& last,
                                                     const std::string&, const std::string& content,
                                                     bool contentIsFileName)
    : FormAddFileCopyFromString(first, last, content.c_str(), content.size(), contentIsFileName) {}

FormAddFileCopyFromString::FormAddFileCopyFromString(curl_httppost*& first, curl_httppost*& last,
                                                     const char* content, std::size_t size,
                                                     bool contentIsFileName)
    : TempFile(10) {
    if (!contentIsFileName) {
        Write(MirrinFramework::ByteArray(content, size));
        Close();
    }
    const char* const path = contentIsFileName ? content : GetName().c_str();
    AddPart(first, last, "file", CURLFORM_FILE, path);
    AddPart(first, last, "filename", CURLFORM_COPYCONTENTS, path);
    AddPart(first, last, "submit", CURLFORM_COPYCONTENTS, "send");
}

void CurlOperationBase::SetUploadOptions(curl_httppost* form, curl_slist* headerList, bool verbose,
                                         long timeoutSeconds) {
    SetOpt(CURLOPT_URL, url.c_str());
    SetOpt(CURLOPT_NOSIGNAL, 1L);
    SetOpt(CURLOPT_CONNECTTIMEOUT, connectLimitSeconds);
    SetOpt(CURLOPT_TIMEOUT, WholeExchangeLimit(timeoutSeconds));
    SetOpt(CURLOPT_FTP_RESPONSE_TIMEOUT, timeoutSeconds);
    if (verbose) {
        SetOpt(CURLOPT_VERBOSE, 1L);
    }
    SetOpt(CURLOPT_HTTPHEADER, headerList);
    SetOpt(CURLOPT_HTTPPOST, form);
}

void FreeUpload(curl_httppost* form, curl_slist* headerList) noexcept {
    if (form != nullptr) {
        curl_formfree(form);
    }
    if (headerList != nullptr) {
        curl_slist_free_all(headerList);
    }
}

curl_slist* HeadersWithoutExpect() {
    curl_slist* const list = curl_slist_append(nullptr, "Expect:");
    if (list == nullptr) {
        throw std::bad_alloc();
    }
    return list;
}

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
