#include "commands/RegistrationEdit.h"

#include "core/Failure.h"
#include "core/Text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>

namespace Brenmoor {
namespace Tavo {

namespace {

using TavoRemotingLib::HalcyrREST;

struct Assignment {
    std::string name;
    std::string value;
};

Assignment Split(const char* option, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        throw UsageError(std::string(option) + " needs NAME=VALUE, not '" + text + "'");
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

template <typename Number>
Number NumberIn(const std::string& name, const std::string& value) {
    Number number = 0;
    const char* const end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || rest != end) {
        throw UsageError(
            name + " needs a number from " + std::to_string(std::numeric_limits<Number>::min()) +
            " to " + std::to_string(std::numeric_limits<Number>::max()) + ", not '" + value + "'");
    }
    return number;
}

/// A text member of a record under its name in the document.
template <typename Record>
struct Member {
    const char* name;
    std::string Record::*text;
};

/// Sets the text member of that name; false when there is none.
template <typename Record, std::size_t count>
bool SetText(Record& record, const Member<Record> (&members)[count], const Assignment& assignment) {
    const auto found =
        std::find_if(std::begin(members), std::end(members),
                     [&](const auto& member) { return member.name == assignment.name; });
    if (found == std::end(members)) {
        return false;
    }
    record.*found->text = assignment.value;
    return true;
}

template <typename Record, std::size_t count>
[[noreturn]] void ThrowUnknown(const char* option, const Member<Record> (&members)[count],
                               std::vector<std::string> names, const std::string& name) {
    for (const auto& member : members) {
        names.emplace_back(member.name);
    }
    std::sort(names.begin(), names.end());
    throw UsageError(std::string(option) + " knows no '" + name + "'",
                     "there are " + Joined(names, ", "));
}

using Record = HalcyrREST::PayloadRegistration;
constexpr Member<Record> recordTexts[] = {{"tag", &Record::tag},
                                          {"description", &Record::description},
                                          {"corbaName", &Record::corbaName},
                                          {"hostID", &Record::hostID}};

using Interface = HalcyrREST::PRInterface;
constexpr Member<Interface> interfaceTexts[] = {{"pn", &Interface::partNumber},
                                                {"swver", &Interface::swVer}};

using Hardware = HalcyrREST::PRHardware;
constexpr Member<Hardware> hardwareTexts[] = {{"manufacturer", &Hardware::manufacturer},
                                              {"model", &Hardware::model},
                                              {"pn", &Hardware::partNumber},
                                              {"serial", &Hardware::serialNumber},
                                              {"swver", &Hardware::swVer},
                                              {"tty", &Hardware::tty},
                                              {"connector", &Hardware::connector}};

void SetHardware(Hardware& entry, const Assignment& assignment) {
    if (assignment.name == "power") {
        entry.hasPower = !assignment.value.empty();
        entry.power = entry.hasPower ? NumberIn<int>("power", assignment.value) : 0;
    } else if (!SetText(entry, hardwareTexts, assignment)) {
        ThrowUnknown("--hardware", hardwareTexts, {"power"}, assignment.name);
    }
}

/// The index of entry `number`, of which there are `count`.
std::size_t IndexOf(const std::string& number, std::size_t count) {
    std::size_t value = 0;
    const char* const end = number.data() + number.size();
    const auto [rest, error] = std::from_chars(number.data(), end, value);
    if (error != std::errc() || rest != end || value < 1 || value > count) {
        throw UsageError("there is no hardware entry '" + number + "'",
                         "they are numbered from 1, and there are " + std::to_string(count));
    }
    return value - 1;
}

} // namespace

void EditRecord(const RegistrationEdits& edits, HalcyrREST::PayloadRegistration& record) {
    for (const std::string& text : edits.members) {
        const Assignment assignment = Split("--set", text);
        if (assignment.name == "boardAddress") {
            record.boardAddress = NumberIn<std::uint16_t>(assignment.name, assignment.value);
        } else if (assignment.name == "reportingAddress") {
            record.reportingAddress = NumberIn<std::uint16_t>(assignment.name, assignment.value);
        } else if (!SetText(record, recordTexts, assignment)) {
            ThrowUnknown("--set", recordTexts, {"boardAddress", "reportingAddress"},
                         assignment.name);
        }
    }
}

std::string EditInterface(const RegistrationEdits& edits, const std::string& document) {
    if (edits.interface.empty()) {
        return document;
    }
    HalcyrREST::PRInterface record;
    record.InitFromRegJSON(document);
    for (const std::string& text : edits.interface) {
        const Assignment assignment = Split("--interface", text);
        if (!SetText(record, interfaceTexts, assignment)) {
            ThrowUnknown("--interface", interfaceTexts, {}, assignment.name);
        }
    }
    return record.UpdateJSON(document);
}

std::string EditHardware(const RegistrationEdits& edits, const std::string& document) {
    if (edits.hardware.empty() && edits.dropped.empty()) {
        return document;
    }
    std::vector<HalcyrREST::PRHardware> entries;
    HalcyrREST::PRHardware::InitFromRegJSON(document, entries);
    for (const std::string& text : edits.hardware) {
        Assignment assignment = Split("--hardware", text);
        const std::size_t point = assignment.name.find('.');
        if (point == std::string::npos) {
            throw UsageError("--hardware needs NUMBER.NAME=VALUE, not '" + text + "'");
        }
        const std::string number = assignment.name.substr(0, point);
        assignment.name.erase(0, point + 1);
        if (number == std::to_string(entries.size() + 1)) {
            entries.emplace_back();
        }
        SetHardware(entries[IndexOf(number, entries.size())], assignment);
    }
    std::set<std::size_t> dropped;
    for (const std::string& number : edits.dropped) {
        dropped.insert(IndexOf(number, entries.size()));
    }
    // From the end, so that the numbers before it stay.
    for (auto index = dropped.rbegin(); index != dropped.rend(); ++index) {
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(*index));
    }
    return HalcyrREST::PRHardware::UpdateJSON(document, entries);
}

} // namespace Tavo
} // namespace Brenmoor
