// SPDX-License-Identifier: MIT
// The truncated Gaussian, inline for the loops that the compiler vectorises.
#pragma once

#include "quillon/simd/dispatch.h"

namespace quillon {

// The body of gauss_near_zero_taylor7.
QUILLON_KERNEL inline double gauss_taylor7(float a, float deviation) {
    const double t = -a / (deviation * 2.0 * deviation);
    const double t2 = t * t;
    const double t4 = t2 * t2;
    return 1.0 + t + t2 / 2.0 + t2 * t / 6.0 + t4 / 24.0 + t4 * t / 120.0 + t4 * t2 / 720.0 +
           t4 * t2 * t / 5040.0;
}

} // namespace quillon
