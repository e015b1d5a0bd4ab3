// SPDX-License-Identifier: MIT
#include "quillon/math/scalar.h"

#include "quillon/math/constants.h"
#include "quillon/math/gauss.h"
#include "quillon/math/trigonometry.h"
#include "quillon/platform/random.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>

using namespace quillon;

namespace quillon {
namespace {

// M. Matsumoto, T. Nishimura, Mersenne Twister (1998).
using Generator = std::mt19937;

// A seed that no other generator has, also where the platform returns one value twice.
std::uint32_t unused_seed() {
    static std::array<std::uint32_t, 3> used{};
    static std::size_t count = 0;
    const auto used_end = used.begin() + count;
    std::uint32_t seed = platform::random_seed();
    while (std::find(used.begin(), used_end, seed) != used_end)
        ++seed;
    used[count++] = seed;
    return seed;
}

// 0 up to but excluding 1, in 2^32 steps.
double draw_unit(Generator& generator) {
    return static_cast<double>(generator()) / 4294967296.0;
}

} // namespace
} // namespace quillon

std::int32_t random_int(std::int32_t low, std::int32_t high) {
    static Generator generator(unused_seed());
    const double lowest = low;
    const double highest = high;
    const double value = draw_unit(generator) * (highest - lowest + 1.0) + lowest;
    return value < highest ? static_cast<std::int32_t>(value) : high;
}

float random_float(float low, float high) {
    static Generator generator(unused_seed());
    const double unit = static_cast<float>(draw_unit(generator));
    const double lowest = low;
    return static_cast<float>(unit * (high - lowest) + lowest);
}

double random_double(double low, double high) {
    static Generator generator(unused_seed());
    return draw_unit(generator) * (high - low) + low;
}

// Fills all bits under the highest one: H. S. Warren, Hacker's Delight, 3-2.
std::uint32_t next_largest_power_of_2(std::uint32_t value) {
    std::uint32_t filled = value - 1;
    for (const int shift : {1, 2, 4, 8, 16})
        filled |= filled >> shift;
    return filled + 1;
}

std::int32_t construct_bitmask(std::int16_t a, std::int16_t b, std::int16_t c, std::int16_t d,
                               std::int16_t e, std::int16_t f, std::int16_t g, std::int16_t h) {
    std::uint32_t mask = 0;
    for (const std::int16_t bit : {a, b, c, d, e, f, g, h})
        if (bit >= 0 && bit < 32)
            mask |= std::uint32_t{1} << bit;
    return static_cast<std::int32_t>(mask);
}

double gauss_near_zero_taylor7(float a, float deviation) {
    return gauss_taylor7(a, deviation);
}

float __tarn_extract_angle(float x, float y) {
    if (x > 0.0F)
        return atanT(static_cast<double>(y) / x);
    if (x < 0.0F)
        return PI - atanT(static_cast<double>(y) / -x);
    return y > 0.0F ? HALF_PI : THREE_HALF_PI;
}
