// SPDX-License-Identifier: MIT
// What a harness claims of a result.
#pragma once

#include <cstdio>
#include <cstdlib>

// Stops the run, as a finding, if `claim` does not hold.
inline void check(bool claim, const char* what) {
    if (claim)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
