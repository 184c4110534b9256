// Any text as a registration document: lists that were written are read back the same.

#include "Fuzz.h"

#include <TavoRemotingLib/HalcyrREST.h>

#include <algorithm>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Fuzzing {

namespace {

using Hardware = std::vector<HalcyrREST::PRHardware>;

/// The document with its lists read and written again. `hardware` is what was read.
std::string Rewritten(const std::string& document, Hardware& hardware) {
    HalcyrREST::PRInterface interface;
    interface.InitFromRegJSON(document);
    HalcyrREST::PRHardware::InitFromRegJSON(document, hardware);
    return HalcyrREST::PRHardware::UpdateJSON(interface.UpdateJSON(document), hardware);
}

/// What the records hold, blank ones left out.
std::vector<std::string> Texts(const Hardware& list) {
    std::vector<std::string> all;
    for (const HalcyrREST::PRHardware& record : list) {
        std::string text;
        for (const std::string& field :
             {record.manufacturer, record.model, record.partNumber, record.serialNumber,
              record.swVer, record.tty, record.connector}) {
            text += field + "|";
        }
        text += record.hasPower ? std::to_string(record.power) : "";
        if (text != "|||||||") {
            all.push_back(text);
        }
    }
    return all;
}

/// Whether every byte is read and written as it is.
bool IsPlain(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char character) {
        return character >= ' ' && character <= '~' && character != '\\';
    });
}

} // namespace

void Try(const std::string& input) {
    std::string once;
    Hardware given;
    try {
        once = Rewritten(input, given);
    } catch (const std::exception&) {
        return; // not JSON, or a list with something else than objects
    }
    Hardware hardware;
    const std::string twice = Rewritten(once, hardware);
    Require(!IsPlain(input) || Texts(hardware) == Texts(given), "a list is read as it was written");
    // A list of blank records was written as null, which is read as no list at all.
    Require(twice == once || hardware.empty(), "a document that was read is written the same");
    Require(Rewritten(twice, hardware) == twice, "a document without null lists stays as it is");

    const HalcyrREST::PRInterface blank;
    const std::string without = HalcyrREST::PRHardware::UpdateJSON(blank.UpdateJSON(once), {});
    Require(Rewritten(without, given) == without && given.empty(), "removed lists are gone");
}

} // namespace Fuzzing
} // namespace TavoRemotingLib
} // namespace Brenmoor
