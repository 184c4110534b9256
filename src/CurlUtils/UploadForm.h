#pragma once

#include <curl/curl.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace CurlUtils {

/// Frees what an upload holds besides its handles. Call it before the handles are released.
void FreeUpload(curl_httppost* form, curl_slist* headerList) noexcept;

/// A header list with the empty "Expect:" header, which keeps libcurl from asking the server's
/// leave before it sends a large body. Throws std::bad_alloc.
curl_slist* HeadersWithoutExpect();

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
