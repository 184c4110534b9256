#include "FormScrutiny.h"
#include "EscapedText.h"

#include <Poco/String.h>
#include <algorithm>
#include <iterator>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr const char* order[] = {"file", "filename", "submit"};

std::string Named(const std::string& name) {
    constexpr std::size_t most = 40;
    return "form part '" + Escape(name.substr(0, most)) + "'";
}

std::ptrdiff_t Place(const FormPart& part) {
    return std::find(std::begin(order), std::end(order), part.name) - std::begin(order);
}

bool IsKnown(const FormPart& part) {
    return Place(part) < std::distance(std::begin(order), std::end(order));
}

const FormPart* Find(const std::vector<FormPart>& parts, const char* name) {
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [&](const FormPart& part) { return part.name == name; });
    return found == parts.end() ? nullptr : &*found;
}

bool HasUsualHeaders(const FormPart& part) {
    std::vector<std::string> headers = {"Content-Disposition"};
    if (part.name == "file") {
        headers.emplace_back("Content-Type");
    }
    return part.headers.size() == headers.size() &&
           std::equal(
               headers.begin(), headers.end(), part.headers.begin(),
               [](const auto& one, const auto& other) { return Poco::icompare(one, other) == 0; });
}

bool IsNamed(const std::string& inHeader, const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    // Old libcurls put a backslash before backslashes and quotes, and leave line ends alone.
    std::string escaped;
    std::string old;
    for (const char character : name) {
        const std::string same(1, character);
        escaped += character == '"' || character == '\r' || character == '\n'
                       ? "%" + Hexadecimal(same)
                       : same;
        old += (character == '"' || character == '\\' ? "\\" : "") + same;
    }
    return inHeader == escaped || inHeader == old;
}

} // namespace

std::vector<std::string> FormFlags(const std::vector<FormPart>& parts) {
    std::vector<std::string> flags;
    std::ptrdiff_t last = 0;
    for (const FormPart& part : parts) {
        if (!IsKnown(part)) {
            flags.push_back(Named(part.name) + " is unknown");
            continue;
        }
        if (Place(part) < last) {
            flags.push_back(Named(part.name) + " is out of order");
        }
        last = std::max(last, Place(part));
        if (!HasUsualHeaders(part)) {
            flags.push_back(Named(part.name) + " has other header lines");
        }
    }
    const FormPart* const file = Find(parts, "file");
    const FormPart* const fileName = Find(parts, "filename");
    if (file != nullptr && fileName != nullptr && !IsNamed(file->fileName, fileName->text)) {
        flags.emplace_back("the header of form part 'file' does not name what 'filename' ends in");
    }
    const FormPart* const submit = Find(parts, "submit");
    if (submit != nullptr && submit->text != "send") {
        flags.emplace_back("form part 'submit' is not 'send'");
    }
    return flags;
}

} // namespace TavoSimulator
} // namespace Brenmoor
