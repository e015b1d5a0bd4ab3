// SPDX-License-Identifier: MIT
// Arithmetic on two or four 64-bit floats at once.
//
// Each lane has the bits of the scalar operation: nothing is fused, swapped or approximated.
// Compilers lower a vector to what the target has, two scalars if need be.
#pragma once

#include "quillon/simd/dispatch.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#if defined(__SSE2__)
    #include <emmintrin.h>
#endif

// GCC warns that the convention of returning a vector depends on the processor. Functions over
// lanes are kernels, so no convention comes into it.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace quillon::simd {

using Pair = double __attribute__((vector_size(16)));
using Quad = double __attribute__((vector_size(32)));
using FloatPair = float __attribute__((vector_size(8)));
using FloatQuad = float __attribute__((vector_size(16)));

template <typename Lanes>
inline constexpr std::size_t LANES = sizeof(Lanes) / sizeof(double);

template <typename Lanes>
QUILLON_KERNEL inline Lanes load(const double* from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

template <typename Lanes>
QUILLON_KERNEL inline void store(double* to, const Lanes& lanes) {
    std::memcpy(to, &lanes, sizeof lanes);
}

// Floats that are `stride` apart, widened.
template <typename Lanes>
QUILLON_KERNEL inline Lanes gather(const float* from, std::size_t stride) {
    Lanes lanes;
    for (std::size_t i = 0; i < LANES<Lanes>; ++i)
        lanes[i] = from[i * stride];
    return lanes;
}

// Lanes rounded to 32 bits.
QUILLON_KERNEL inline FloatPair narrowed(const Pair& lanes) {
    return __builtin_convertvector(lanes, FloatPair);
}

QUILLON_KERNEL inline FloatQuad narrowed(const Quad& lanes) {
    return __builtin_convertvector(lanes, FloatQuad);
}

#if defined(__SSE2__)
// One instruction, where GCC makes one for each root of the loop below.
QUILLON_KERNEL inline Pair square_roots(const Pair& values) {
    return _mm_sqrt_pd(values);
}
#endif

template <typename Lanes>
QUILLON_KERNEL inline Lanes square_roots(const Lanes& values) {
    Lanes roots;
    for (std::size_t i = 0; i < LANES<Lanes>; ++i)
        roots[i] = std::sqrt(values[i]);
    return roots;
}

} // namespace quillon::simd
