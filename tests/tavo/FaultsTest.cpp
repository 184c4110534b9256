#include "support/SimulatorTest.h"

#include <algorithm>

namespace Brenmoor {
namespace Tavo {
namespace Testing {

namespace {

struct FaultCase {
    const char* fault;
    std::vector<std::string> words;
    int code;
    std::string line; ///< on standard error behind the command's name, SERVER for the address
    std::string out = {};
};

void PrintTo(const FaultCase& fault, std::ostream* stream) {
    *stream << fault.fault;
}

const std::vector<std::string> off = {"off"};
const std::vector<std::string> poll = {"poll"};
const std::vector<std::string> script = {"script", "x"};
const std::vector<std::string> packet = {"send-packet", "x"};
const std::vector<std::string> power = {"power", "on"};

std::string Refused(const std::string& status) {
    return "SERVER refused: " + status + "; see its answer with -vv";
}

std::string Broken(const std::string& message) {
    return "broken reply from SERVER: curl_easy_perform returned " + message +
           "; see it with --trace";
}

std::string NotUnderstood(const std::string& message) {
    return "the reply of SERVER is not understood: " + message + "; see it with -vv";
}

const char noReply[] = "52 (Server returned nothing (no headers, no data))";
const char noHttp[] = "1 (Unsupported protocol)";
const char cutOff[] = "56 (Failure when receiving data from the peer)";
const char noMember[] = "* Line 1, Column 2 Missing '}' or object member name";

const FaultCase cases[] = {
    {"status-400", off, 1, Refused("HTTP/1.1 400 Bad Request")},
    {"status-404", packet, 1, Refused("HTTP/1.1 404 Not Found")},
    {"status-503", poll, 1, Refused("HTTP/1.1 503 Service Unavailable")},
    {"reason-missing", power, 1, Refused("HTTP/1.1 200")},
    {"reason-fine", off, 1, Refused("HTTP/1.1 200 Fine")},
    {"interim-100", off, 1, Refused("HTTP/1.1 100 Continue")},
    {"redirect-302", script, 1, Refused("HTTP/1.1 302 Found")},
    {"error", poll, 1, "SERVER could not serve the poll: no disk; poll again"},
    {"timeout", poll, 4, "nothing happened at SERVER in the poll's time; poll again"},
    {"no-reply", script, 5, Broken(noReply)},
    {"close-before-body", packet, 5, Broken(noReply)},
    {"interim-only", off, 5, Broken(noReply)},
    {"bare-body", off, 5, Broken(noHttp)},
    {"not-http", poll, 5, Broken(noHttp)},
    {"reset-before-reply", power, 5, Broken(cutOff)},
    {"body-cut", script, 5, Broken("18 (Transferred a partial file)")},
    {"length-negative", script, 5, Broken("8 (Weird server reply)")},
    {"header-100-kb", off, 5,
     "too much from SERVER, or no memory: curl_easy_perform returned 27 (Out of memory); see it "
     "with --trace"},
    {"body-empty", poll, 5, NotUnderstood("The command returned was empty")},
    {"json-html", poll, 5, NotUnderstood(noMember)},
    {"timeout-text", poll, 5, NotUnderstood("Value is not convertible to bool.")},
    {"commands-text", poll, 5,
     NotUnderstood("None of the expected conditions were satisfied in response to Poll")},
    {"id-number", poll, 5, NotUnderstood("Missing string element 'id'")},
    {"text-missing", poll, 5, NotUnderstood("Missing string element 'cmd'")},
    {"code-404-ok", off, 0, "", "P1: to be switched off\n"},
    {"body-excess", script, 0, "", "simulated output of 'x'\nnothing was run\n"},
};

class FaultsTest : public SimulatorTest, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(FaultsTest, IsToldInOneLineAndOver) {
    std::vector<std::string> words = {"-s", server, "-i", "P1"};
    words.insert(words.end(), GetParam().words.begin(), GetParam().words.end());
    std::string line = GetParam().line;
    if (!line.empty()) {
        line = "tavo " + GetParam().words[0] + ": " + line + "\n";
        line.replace(line.find("SERVER"), 6, server);
    }
    simulator->Arm(GetParam().fault);
    EXPECT_EQ(RunTavo(words), (Outcome{GetParam().code, GetParam().out, line}));
    EXPECT_EQ(RunTavo({"-s", server, "-i", "P1", "registration-complete", "-q"}),
              (Outcome{0, "", ""}));
}

std::string NameOf(const ::testing::TestParamInfo<FaultCase>& info) {
    std::string name = info.param.fault;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Simulator, FaultsTest, ::testing::ValuesIn(cases), NameOf);

} // namespace

} // namespace Testing
} // namespace Tavo
} // namespace Brenmoor
