// SPDX-License-Identifier: MIT
#include "quiet_errors.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>

namespace quillon::audio_openal {
namespace {

constexpr int STANDARD_ERROR = 2;

} // namespace

QuietErrors::QuietErrors() : errors(_dup(STANDARD_ERROR)) {
    const int nowhere = _open("NUL", _O_WRONLY | _O_NOINHERIT);
    if (errors >= 0 && nowhere >= 0)
        _dup2(nowhere, STANDARD_ERROR);
    if (nowhere >= 0)
        _close(nowhere);
}

QuietErrors::~QuietErrors() {
    if (errors < 0)
        return;
    std::fflush(stderr);
    _dup2(errors, STANDARD_ERROR);
    _close(errors);
}

} // namespace quillon::audio_openal
