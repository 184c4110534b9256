#include "support/Wire.h"
#include "support/WritingLine.h"

#include <cstdlib>
#include <set>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

const char* TimeOf(Fault::When when) {
    switch (when) {
    case Fault::When::BeforeBody:
        return "before the body";
    case Fault::When::InBody:
        return "within the body";
    case Fault::When::Instead:
        return "in the place of the operation";
    case Fault::When::InReply:
        return "behind the operation";
    }
    return "";
}

std::string ScriptOf(const Fault& fault) {
    WritingLine line;
    PlayUsually(fault, line);
    return std::string(fault.name) + ", " + TimeOf(fault.when) + "\n" + line.Script();
}

// With UPDATE=1 in the environment the file is written anew; look at what changed in it.
TEST(FaultScript, IsAsKeptForEveryFault) {
    std::string scripts;
    for (const Fault& fault : FaultCatalogue()) {
        scripts += ScriptOf(fault);
    }
    if (std::getenv("UPDATE") != nullptr) {
        WriteFile(FAULT_SCRIPTS, scripts);
    }
    const std::string kept = ReadFile(FAULT_SCRIPTS);
    for (const Fault& fault : FaultCatalogue()) {
        const std::string script = ScriptOf(fault);
        EXPECT_NE(kept.find(script), std::string::npos) << script;
    }
    EXPECT_EQ(scripts.size(), kept.size());
}

TEST(FaultCatalogueTest, NamesAndSummariesAreOfOneKind) {
    std::set<std::string> names;
    std::set<std::string> groups;
    std::string group;
    for (const Fault& fault : FaultCatalogue()) {
        const std::string name = fault.name;
        EXPECT_TRUE(names.insert(name).second) << name << " is there twice";
        EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"),
                  std::string::npos)
            << name;
        const std::string summary = fault.summary;
        EXPECT_FALSE(summary.empty()) << name;
        EXPECT_EQ(summary.find('\n'), std::string::npos) << name;
        EXPECT_NE(summary.back(), '.') << name;
        if (group != fault.group) {
            group = fault.group;
            EXPECT_TRUE(groups.insert(group).second) << group << " is in two places";
        }
    }
    EXPECT_GE(names.size(), 200U);
}

TEST(FaultCatalogueTest, KnowsTheClientsLimit) {
    using std::chrono::milliseconds;
    EXPECT_EQ(ClientLimit("/xp?op=off&id=p"), milliseconds(301000));
    EXPECT_EQ(ClientLimit("/xp?op=script&id=p&timeout=5000"), milliseconds(301000));
    EXPECT_EQ(ClientLimit("/xp?op=poll&timeout=0"), milliseconds(61000));
    EXPECT_EQ(ClientLimit("/xp?op=poll&timeout=1"), milliseconds(62000));
    EXPECT_EQ(ClientLimit("/xp?op=poll&timeout=240000"), milliseconds(301000));
    EXPECT_EQ(ClientLimit("/xp?op=poll"), milliseconds(61000));
    EXPECT_EQ(ClientLimit("/xp?op=poll&timeout=-5"), milliseconds(61000));
    EXPECT_EQ(ClientLimit("/xp?op=poll&timeout=9223372036854775807"), milliseconds(8640061000));
}

std::string Played(const char* name, const Occasion& occasion) {
    WritingLine line;
    FindFault(name).play(line, occasion);
    return line.Sent();
}

TEST(FaultCatalogueTest, GarblesARefusalAsAnyOtherReply) {
    Occasion occasion;
    occasion.healthy.status = 404;
    occasion.healthy.reason = "Not Found";
    occasion.healthy.body = "Unknown\n";
    EXPECT_EQ(Played("body-cut", occasion),
              "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain\r\nContent-Length: 8\r\n"
              "Connection: close\r\n\r\nUnkn");
    occasion.healthy.body = "";
    EXPECT_EQ(Played("chunk-bytes", occasion),
              "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain\r\n"
              "Transfer-Encoding: chunked\r\nConnection: close\r\n\r\n0\r\n\r\n");
}

TEST(FaultCatalogueTest, CommandsAreForThePayloadThatAsked) {
    Occasion occasion;
    occasion.healthy = Ok();
    occasion.id = "a\"b";
    EXPECT_EQ(BodyOf(Played("command-members-unknown", occasion)),
              R"({"commands": [{"id": "a\"b", "command": "'t1'go", "urgent": true}]})");
    occasion.id = "";
    EXPECT_EQ(BodyOf(Played("text-missing", occasion)), R"({"commands": [{"id": ""}]})");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
