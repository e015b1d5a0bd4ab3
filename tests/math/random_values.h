// SPDX-License-Identifier: MIT
// Random operands, some of them awkward, and the comparison of results bit for bit.
#pragma once

#include "quillon/quillon.h"
#include "table_entries.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>

namespace quillon {

// Numbers from -2 to 2; one in sixteen is a zero, an infinity, NaN, very small or very great.
class Numbers {
public:
    double next() {
        constexpr double odd[] = {0.0,    -0.0,   1.0,      -1.0,      1e-310, 1e200,
                                  -1e300, 5e-324, INFINITY, -INFINITY, NAN};
        if (awkward && engine() % 16 == 0)
            return odd[engine() % std::size(odd)];
        return std::uniform_real_distribution<>(-2.0, 2.0)(engine);
    }

    cVector3D vector() { return {next(), next(), next()}; }

    cQuaternion quaternion() { return {next(), next(), next(), next()}; }

    cMatrix3D matrix() {
        cMatrix3D m;
        for (int i = 0; i < 9; ++i)
            m[i] = next();
        return m;
    }

    bool awkward = true;

private:
    std::mt19937 engine{20261122};
};

// Equal bits, where any two NaN count as equal.
template <typename Object>
testing::AssertionResult same_bits(const Object& a, const Object& b, int count) {
    for (int i = 0; i < count; ++i) {
        if (std::isnan(a[i]) && std::isnan(b[i]))
            continue;
        if (std::bit_cast<std::uint64_t>(a[i]) != std::bit_cast<std::uint64_t>(b[i]))
            return testing::AssertionFailure() << "component " << i << ": " << a[i] << ", " << b[i];
    }
    return testing::AssertionSuccess();
}

template <typename Object>
testing::AssertionResult close_to(const Object& a, const Object& b, int count, double tolerance) {
    for (int i = 0; i < count; ++i)
        if (!(std::abs(a[i] - b[i]) <= tolerance))
            return testing::AssertionFailure() << "component " << i << ": " << a[i] << ", " << b[i];
    return testing::AssertionSuccess();
}

// Tests with filled tables and random numbers.
class Rotations : public FilledTables {
protected:
    Numbers numbers;
};

} // namespace quillon
