// Any bytes as a registration file.

#include "Fuzz.h"

#include <MirrinFramework/TempFile.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <json/reader.h>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

constexpr std::size_t maxFileSize = 32768;

class File : private MirrinFramework::TempFile {
public:
    explicit File(const std::string& content) : TempFile(10) {
        Write(MirrinFramework::ByteArray(content.data(), content.size()));
        Close();
    }
    using TempFile::GetName;
};

Json::Value Parsed(const std::string& document) {
    Json::Value value;
    Require(Json::Reader().parse(document, value), "what is written is JSON");
    return value;
}

void RequireSame(const HalcyrREST::PayloadRegistration& got,
                 const HalcyrREST::PayloadRegistration& expected) {
    Require(got.boardAddress == expected.boardAddress, "the board's address is kept");
    Require(got.reportingAddress == expected.reportingAddress, "the reporting address is kept");
}

} // namespace

void Try(const std::string& input) {
    const File file(input);
    HalcyrREST::PayloadRegistration record;
    try {
        record = HalcyrREST::PayloadRegistration(file.GetName());
        Require(input.size() <= maxFileSize, "a large file is refused");
    } catch (const std::invalid_argument&) {
        Require(input.size() > maxFileSize, "only a large file is an invalid argument");
    } catch (const std::exception&) {
        record.boardAddress = 7;
    }
    const std::string document = record.ToJSON(file.GetName());
    const File written(document);
    if (document.size() > maxFileSize) {
        return;
    }
    const HalcyrREST::PayloadRegistration again(written.GetName());
    RequireSame(again, record);
    // Not as a text: names that were no UTF-8 are written as other names, which sort otherwise.
    Require(Parsed(again.ToJSON(written.GetName())) == Parsed(document),
            "a document that was written says the same when it is written again");
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
