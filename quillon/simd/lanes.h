// Arithmetic on two or four 64-bit floats at once, for the inner parts of the library.
//
// Each lane gives the bits that the scalar operation gives: nothing is fused, swapped or
// approximated. The compilers lower it to whatever the target has, two scalars if need be.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>

namespace quillon::simd {

using Pair = double __attribute__((vector_size(16)));
using Quad = double __attribute__((vector_size(32)));

// Lanes go by reference: passed by value, they would bind a function to one kind of processor.
template <class Lanes>
[[gnu::always_inline]] inline void load(Lanes& lanes, const double* from) {
    std::memcpy(&lanes, from, sizeof lanes);
}

template <class Lanes>
[[gnu::always_inline]] inline void store(double* to, const Lanes& lanes) {
    std::memcpy(to, &lanes, sizeof lanes);
}

template <class Lanes>
[[gnu::always_inline]] inline void square_roots(Lanes& roots, const Lanes& values) {
    for (std::size_t i = 0; i < sizeof(Lanes) / sizeof(double); ++i)
        roots[i] = std::sqrt(values[i]);
}

} // namespace quillon::simd
