#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace Brenmoor {

/// For a program's begin. A file that is opened in the place of a missing standard stream would be
/// taken for it. What takes the place here fails as the missing one would.
inline void FillStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

} // namespace Brenmoor
