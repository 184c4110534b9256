#pragma once

#include "CurlUtils/TransferTest.h"

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

/// The two upload classes behind one name, for tests of what they share.
struct Upload2 {
    static constexpr bool isMulti = false;

    static CurlUtils::PostFile2 Send(const std::string& url, const std::string& content,
                                     bool contentIsFileName, bool verbose = false,
                                     long timeoutSeconds = 20) {
        CapturingLogger logger;
        return CurlUtils::PostFile2(url, "name", content, logger, contentIsFileName, verbose,
                                    timeoutSeconds);
    }
};

struct MultiUpload {
    static constexpr bool isMulti = true;

    static CurlUtils::PostFile Send(const std::string& url, const std::string& content,
                                    bool contentIsFileName, bool verbose = false,
                                    long timeoutSeconds = 20) {
        return CurlUtils::PostFile(url, "name", content, contentIsFileName, verbose,
                                   timeoutSeconds);
    }
};

using BothUploads = ::testing::Types<Upload2, MultiUpload>;

struct UploadNames {
    template <typename Upload>
    static std::string GetName(int) {
        return Upload::isMulti ? "PostFile" : "PostFile2";
    }
};

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
