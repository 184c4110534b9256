#pragma once

#include "Exchange.h"
#include "FormScrutiny.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <ostream>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {

/// Splits a multipart stream at its boundary, one part after the other, byte for byte: a beginning
/// of a boundary that does not go on as one belongs to the part.
class PartReader {
public:
    PartReader(std::istream& in, const std::string& boundary);

    /// Goes to the next part, whose preceding one has been read, and gives what its header states.
    /// False after the last part.
    bool Next(FormPart& part);

    /// Writes the part's bytes to `out`.
    /// Throws a Refusal for more than `limit` bytes or a stream that ends too early.
    void Read(std::ostream& out, std::uintmax_t limit);

private:
    std::string HeaderLine();
    bool AtLastBoundary();
    char Get();

    std::istream& in;
    const std::string delimiter;
    bool started = false;
    /// How much of the delimiter has been seen. The stream's start counts as a line end.
    std::size_t matched = 2;
};

/// Reads an upload's form, with its parts "file", "filename" and "submit" each exactly once. The
/// bytes of "file", at most `limit`, go to `file`; the text of "filename" is returned.
/// Throws a Refusal for any other form. What is not as the client sends it is flagged.
std::string ReadForm(const Request& request, std::ostream& file, std::uintmax_t limit);

/// The same for content made from text: without the zero byte that ends it by the upload's format.
std::string ReadTextForm(const Request& request,
                         std::uintmax_t limit = std::uintmax_t{16} * 1024 * 1024);

} // namespace TavoSimulator
} // namespace Brenmoor
