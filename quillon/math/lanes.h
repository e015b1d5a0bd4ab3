// Arithmetic on two 64-bit floats at once, for the inner parts of this folder.
//
// Each lane gives the bits that the scalar operation gives: nothing is fused, swapped or
// approximated. The compilers lower it to whatever the target has, two scalars if need be.
#pragma once

#include <cmath>

namespace quillon {

using Pair = double __attribute__((vector_size(16)));

inline Pair both(double value) {
    return Pair{value, value};
}

inline Pair square_roots(Pair values) {
    return Pair{std::sqrt(values[0]), std::sqrt(values[1])};
}

} // namespace quillon
