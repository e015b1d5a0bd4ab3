// SPDX-License-Identifier: MIT
#include "quillon/math/scalar.h"

#include "quillon/math/constants.h"
#include "quillon/math/trigonometry.h"
#include "quillon/platform/random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>

using namespace quillon;

namespace {

constexpr std::int32_t LOWEST = std::numeric_limits<std::int32_t>::min();

// All bits but the LOWEST, so that the seeds after it wrap.
constexpr std::uint32_t SEED = 0xFFFFFFFE;

} // namespace

// In place of the platform's: every generator is offered the same seed.
std::uint32_t quillon::platform::random_seed() {
    return SEED;
}

TEST(Random, EachFunctionFollowsATwisterOfItsOwnSeed) {
    const auto unit = [](std::mt19937& twister) {
        return static_cast<double>(twister()) / 4294967296.0;
    };
    std::mt19937 ints(SEED);
    std::mt19937 singles(SEED + 1);
    std::mt19937 doubles(SEED + 2);
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t bounds[][2] = {
        {-2, 2}, {3, 3}, {5, 2}, {LOWEST, highest}, {highest, LOWEST}};
    for (int i = 0; i < 2000; ++i) {
        const auto [low, high] = bounds[i % std::size(bounds)];
        const double value = unit(ints) * (1.0 + high - low) + low;
        ASSERT_EQ(value < high ? std::trunc(value) : high, random_int(low, high)) << i;
        const double single = static_cast<float>(unit(singles));
        ASSERT_EQ(static_cast<float>(single * 7.0 - 3.0), random_float(-3.0F, 4.0F)) << i;
        ASSERT_EQ(unit(doubles) * 4.25 + 2.5, random_double(2.5, 6.75)) << i;
    }
}

TEST(Bits, PowersOfTwoAndMasks) {
    constexpr std::uint32_t powers[][2] = {
        {0, 0},         {1, 1}, {5, 8}, {8, 8}, {0x7FFFFFFF, 0x80000000}, {0x80000000, 0x80000000},
        {0x80000001, 0}};
    for (const auto& [value, expected] : powers)
        EXPECT_EQ(expected, next_largest_power_of_2(value)) << value;
    EXPECT_EQ(0x81, construct_bitmask(0, 7, 7, -1, -1, -1, -1, -1)) << "a bit named twice";
    EXPECT_EQ(LOWEST | 1, construct_bitmask(-1, -1, -1, -1, -1, -1, 0, 31));
    EXPECT_EQ(2, construct_bitmask(32, 1, -2, 32767, -32768, -1, 64, 40)) << "no such bits";
}

TEST(Gauss, IsTheSeventhTaylorPolynomial) {
    EXPECT_EQ(1.0 - 1.0 + 1 / 2.0 - 1 / 6.0 + 1 / 24.0 - 1 / 120.0 + 1 / 720.0 - 1 / 5040.0,
              gauss_near_zero_taylor7(2.0F, 1.0F));
    for (int i = 0; i <= 800; ++i) {
        const float a = static_cast<float>(i) / 100.0F;
        EXPECT_NEAR(std::exp(-a / 8.0), gauss_near_zero_taylor7(a, 2.0F), 2.5e-5) << a;
    }
}

TEST(TarnAngle, IsNotWrappedAndSaturates) {
    __init_trig_tables();
    EXPECT_EQ(HALF_PI, __tarn_extract_angle(0.0F, 1.0F));
    EXPECT_EQ(THREE_HALF_PI, __tarn_extract_angle(0.0F, 0.0F));
    EXPECT_EQ(THREE_HALF_PI, __tarn_extract_angle(NAN, -1.0F));
    EXPECT_EQ(-atanT(1.0), __tarn_extract_angle(1.0F, -1.0F)) << "not wrapped";
    EXPECT_EQ(PI - atanT(-0.5), __tarn_extract_angle(-2.0F, -1.0F));
    EXPECT_EQ(1.5208379030227661, __tarn_extract_angle(1.0F, 100.0F)) << "saturates";
    __clear_trig_tables();
}
