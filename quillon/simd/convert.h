// SPDX-License-Identifier: MIT
// Conversions that are defined for every value.
#pragma once

#include "quillon/simd/dispatch.h"

#include <cstdint>
#include <limits>

#if defined(__SSE2__) && defined(__x86_64__)
    #include <emmintrin.h>
#endif

namespace quillon::simd {

// `value` truncated toward zero; the least integer for a value beyond 64 bits or NaN.
QUILLON_KERNEL inline std::int64_t truncated(double value) {
#if defined(__SSE2__) && defined(__x86_64__)
    return _mm_cvttsd_si64(_mm_set_sd(value));
#else
    constexpr double limit = 9223372036854775808.0;
    const bool fits = value > -limit && value < limit;
    return fits ? static_cast<std::int64_t>(value) : std::numeric_limits<std::int64_t>::min();
#endif
}

} // namespace quillon::simd
