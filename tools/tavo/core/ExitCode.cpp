#include "core/ExitCode.h"

namespace Brenmoor {
namespace Tavo {

const std::vector<ExitCodeRow>& ExitCodes() {
    static const std::vector<ExitCodeRow> rows = {
        {ExitCode::Done, "done"},
        {ExitCode::Refused, "refused by the server"},
        {ExitCode::Usage, "usage: the command line is not understood or lacks something"},
        {ExitCode::NoConnection, "no connection to the server, or it broke while sending"},
        {ExitCode::TimedOut, "time-out: no answer in time, or a poll that had nothing to report"},
        {ExitCode::BadReply, "bad reply: missing, cut off or not understood"},
        {ExitCode::Local, "trouble on this side: a file, standard output, memory or room"},
        {ExitCode::Other, "a failure of no other kind"},
    };
    return rows;
}

} // namespace Tavo
} // namespace Brenmoor
