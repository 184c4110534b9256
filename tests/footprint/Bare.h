#pragma once

#include <json/value.h>
#include <string>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

/// One GET with libcurl; the reply's body.
std::string BareGet(const std::string& url);

/// One upload of the form's three parts, from memory or from a file.
void BareUpload(const std::string& url, const std::string& content, bool contentIsFileName);

/// A whole file.
std::string BareRead(const std::string& fileName);

/// One parse with jsoncpp.
Json::Value BareParse(const std::string& text);

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
