// SPDX-License-Identifier: MIT
// Table look-ups for the units of this folder that need more than one at a time.
#pragma once

#include "quillon/math/constants.h"
#include "quillon/simd/convert.h"
#include "quillon/simd/dispatch.h"

#include <cstdint>
#include <limits>

namespace quillon::trig {

inline constexpr std::int32_t CIRCLE_ENTRIES = 72000;
inline constexpr std::int32_t TANGENT_ENTRIES = 3600;

// Entry i holds the cosine or sine of i * PI / 36000.
extern double cosTable[CIRCLE_ENTRIES];
extern double sinTable[CIRCLE_ENTRIES];

// The functions below are always inlined: a call would add half to the time of a look-up.

// `position` truncated toward zero and wrapped into 0 to `entries - 1`; 0 if it is beyond 64-bit
// integers or NaN.
template <std::int32_t entries>
QUILLON_KERNEL inline std::int64_t wrapped_index(double position) {
    const std::int64_t whole = simd::truncated(position);
    if (static_cast<std::uint64_t>(whole) < entries) [[likely]]
        return whole;
    if (whole == std::numeric_limits<std::int64_t>::min())
        return 0;
    const std::int64_t rest = whole % entries;
    return rest < 0 ? rest + entries : rest;
}

QUILLON_KERNEL inline std::int64_t circle_index(double degrees) {
    return wrapped_index<CIRCLE_ENTRIES>(degrees * 200.0 + 0.5);
}

inline double to_degrees(double radians) {
    return radians * 180.0 * INV_PI;
}

// The point of the unit circle at an angle.
struct Direction {
    double cosine;
    double sine;
};

// cosTR and sinTR of one angle in one look-up.
QUILLON_KERNEL inline Direction direction_at(double radians) {
    const std::int64_t index = circle_index(to_degrees(radians));
    return {cosTable[index], sinTable[index]};
}

} // namespace quillon::trig
