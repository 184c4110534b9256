#include "Subjects.h"

#include "HalcyrREST/Operations.h"

#include <TavoRemotingLib/CurlUtils.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Torture {

namespace {

const std::string everything =
    R"({"commands":[{"id":"P 1","command":"'t1'start the pumps, please"},)"
    R"({"id":"P 1","command":"file:\"t2\"/tmp/a file with a name"}],)"
    R"("gps":{"latitude":1.5,"longitude":-2.25,"timeFix":1700000000},)"
    R"("shutdown":true})";

std::vector<Subject> Operations() {
    std::vector<Subject> subjects;
    for (const Testing::Operation& operation : Testing::Operations()) {
        subjects.push_back(
            {operation.name, operation.ReplyBody(), [operation](const Surroundings& with) {
                 operation.call(with.client, "a-longer-identifier", with.file);
             }});
    }
    subjects.push_back({"PollForEverything", everything, [](const Surroundings& with) {
                            std::vector<std::string> ids = {"P 1", "P 2"};
                            std::vector<HalcyrREST::RemoteCommand> commands;
                            HalcyrREST::GPSInfo gps;
                            HalcyrREST::ShutdownInfo shutdown;
                            with.client.Poll(ids, &commands, &gps, &shutdown, 60000, 10);
                        }});
    return subjects;
}

/// Those that no operation uses.
std::vector<Subject> Transfers() {
    return {
        {"PostFile", "OK",
         [](const Surroundings& with) {
             CurlUtils::PostFile("http://" + with.server + "/x", "name", "content", false, false,
                                 300);
         }},
        {"PostFileOfAFile", "OK",
         [](const Surroundings& with) {
             CurlUtils::PostFile("http://" + with.server + "/x", "name", with.file, true, false,
                                 300);
         }},
    };
}

std::vector<Subject> Records() {
    return {
        {"RemoteCommand", "",
         [](const Surroundings&) {
             HalcyrREST::RemoteCommand(
                 R"("id":"the payload's identifier","command":"file:'a longer tag'a longer command")");
         }},
        {"GPSInfo", "",
         [](const Surroundings&) {
             HalcyrREST::GPSInfo(R"({"latitude":1.5,"longitude":"x","timeFix":1700000000})");
         }},
        {"ShutdownInfo", "",
         [](const Surroundings&) {
             HalcyrREST::ShutdownInfo("true");
         }},
        {"PRInterface", "",
         [](const Surroundings& with) {
             HalcyrREST::PRInterface record;
             record.InitFromJSON(R"({"pn":"a longer part number","swver":"a longer version"})");
             record.InitFromRegJSON(with.document);
             record.UpdateJSON(with.document);
         }},
        {"PRHardware", "",
         [](const Surroundings& with) {
             HalcyrREST::PRHardware record;
             record.InitFromJSON(R"({"pn":"a longer part number","power":12})");
             std::vector<HalcyrREST::PRHardware> list;
             HalcyrREST::PRHardware::InitFromRegJSON(with.document, list);
             HalcyrREST::PRHardware::UpdateJSON(with.document, list);
         }},
        {"PayloadRegistration", "",
         [](const Surroundings& with) {
             HalcyrREST::PayloadRegistration record(with.file);
         }},
        {"PayloadRegistrationToJSON", "",
         [](const Surroundings& with) {
             HalcyrREST::PayloadRegistration().ToJSON(with.file);
         }},
        {"GetPayloadRegistrationContent", "",
         [](const Surroundings& with) {
             with.client.GetPayloadRegistrationContent(with.file, {});
         }},
        {"EncodeURL", "",
         [](const Surroundings&) {
             HalcyrREST::EncodeURL("a longer value & some that is escaped");
         }},
        {"ExpectOK", "",
         [](const Surroundings&) {
             ExpectOKHeaders({"HTTP/1.1 200 OK\r\n", "Content-Length: 100000000\r\n"}, "Label");
         }},
        {"HalcyrREST", "",
         [](const Surroundings& with) {
             HalcyrREST("a server with a longer name:80", with.logger, false);
         }},
    };
}

void* volatile lost = nullptr;

/// Whether memory is refused now.
bool IsFailed() {
    void* const memory = std::malloc(1);
    std::free(memory);
    return memory == nullptr;
}

} // namespace

std::vector<Subject> Subjects() {
    std::vector<Subject> all = Operations();
    for (const std::vector<Subject>& some : {Transfers(), Records()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

std::vector<Subject> FaultySubjects() {
    static bool isSpoilt = false;
    return {
        {"a crash", "",
         [](const Surroundings&) {
             if (IsFailed()) {
                 std::raise(SIGSEGV);
             }
         }},
        {"a hang", "",
         [](const Surroundings&) {
             while (IsFailed()) {
                 pause();
             }
         }},
        {"a lost block", "",
         [](const Surroundings&) {
             if (IsFailed()) {
                 lost = std::malloc(1); // the second time, there is memory
             }
         }},
        {"a lost descriptor", "",
         [](const Surroundings&) {
             if (IsFailed()) {
                 open("/dev/null", O_RDONLY);
             }
         }},
        {"a lost file", "",
         [](const Surroundings&) {
             if (IsFailed()) {
                 close(creat((std::string(std::getenv("TMPDIR")) + "/lost").c_str(), 0600));
             }
         }},
        {"no std::exception", "",
         [](const Surroundings&) {
             if (IsFailed()) {
                 throw 1;
             }
         }},
        {"an unusable client", "",
         [](const Surroundings&) {
             isSpoilt = isSpoilt || IsFailed();
             if (isSpoilt) {
                 throw std::bad_alloc();
             }
         }},
    };
}

} // namespace Torture
} // namespace TavoRemotingLib
} // namespace Brenmoor
