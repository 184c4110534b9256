#include "support/CapturingLogger.h"
#include "support/CleanTest.h"
#include "support/ScriptedServer.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <gtest/gtest.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

class HeadersAndBody : public CleanTest {};

TEST_F(HeadersAndBody, StatusFieldAndClosingLineAreThreeElementsWithTheirLineEnds) {
    const ScriptedServer server("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    CapturingLogger logger;
    const CurlUtils::HttpGet get("http://" + server.Address() + "/", logger, false, 5);
    EXPECT_EQ(get.headers, (std::vector<std::string>{"HTTP/1.1 200 OK\r\n",
                                                     "Content-Length: 0\r\n", "\r\n"}));
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
