#pragma once

#include <curl/curl.h>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

/// Frees what an upload holds besides its handles. Call it before the handles are released.
void FreeUpload(curl_httppost* form, curl_slist* headerList) noexcept;

/// A header list with the empty "Expect:" header, which keeps libcurl from asking the server's
/// leave before it sends a large body. Throws std::bad_alloc.
curl_slist* HeadersWithoutExpect();

/// The content of an upload as it travels: the caller's bytes and one zero byte, which
/// is part of the upload's format. The zero byte also ends a path where the caller's text ends.
std::string UploadContent(const std::string& content);

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
