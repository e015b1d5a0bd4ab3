// SPDX-License-Identifier: MIT
#include "quiet_errors.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace quillon::audio_openal {

QuietErrors::QuietErrors() : errors(dup(STDERR_FILENO)) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (errors >= 0 && nowhere >= 0)
        dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0)
        close(nowhere);
}

QuietErrors::~QuietErrors() {
    if (errors < 0)
        return;
    std::fflush(stderr);
    dup2(errors, STDERR_FILENO);
    close(errors);
}

} // namespace quillon::audio_openal
