// SPDX-License-Identifier: MIT
// Random numbers, bit operations and two small approximations.
#pragma once

#include "quillon/export.h"

#include <cstdint>

extern "C" {

// Random numbers from three independent Mersenne Twisters (MT19937), one for each function.
//
// A call draws one 32-bit output. The first call of a function takes its seed from the platform's
// random device; the three seeds always differ.
// Not safe for use from two threads at once.

// From `low` to `high`, both included; `high` where `low` is not below it.
//
// Truncates toward zero, so with a negative `low` 0 is twice as frequent as other values, and `low`
// itself comes out once in 2^32 draws.
QUILLON_API std::int32_t random_int(std::int32_t low, std::int32_t high);

// From `low` to `high`, both included.
QUILLON_API float random_float(float low, float high);

// From `low` up to `high`, which only rounding can reach.
QUILLON_API double random_double(double low, double high);

// The smallest power of two that is not below `value`; 0 for 0 and for values above 2^31.
QUILLON_API std::uint32_t next_largest_power_of_2(std::uint32_t value);

// A mask with the given bits set, 0 to 31; -1 and any other number add none.
QUILLON_API std::int32_t construct_bitmask(std::int16_t a, std::int16_t b, std::int16_t c,
                                           std::int16_t d, std::int16_t e, std::int16_t f,
                                           std::int16_t g, std::int16_t h);

// exp(-a / (2 * deviation^2)) by the Taylor polynomial of degree 7 about zero.
//
// With a squared distance for `a` it is the Gaussian near its centre.
// Error: at most 2.5e-5 while the exponent is above -1; further out it falls to minus infinity.
// A zero deviation leads to infinities and NaN.
QUILLON_API double gauss_near_zero_taylor7(float a, float deviation);

// The angle of the direction (x, y) in radians by atanT, -1.520838 to 4.712389.
//
// THREE_HALF_PI for (0, 0). Not wrapped to one turn.
// Error: up to 0.05 beside the y axis, where atanT saturates.
QUILLON_API float __tarn_extract_angle(float x, float y);
}
