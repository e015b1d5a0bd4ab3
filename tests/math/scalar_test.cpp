// SPDX-License-Identifier: MIT
#include "quillon/math/scalar.h"

#include "quillon/math/constants.h"
#include "quillon/math/trigonometry.h"
#include "quillon/platform/random.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <cstdint>
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

TEST(Constants, AreRoundedOnceFromTheNarrowPi) {
    EXPECT_THAT((std::array{PI, HALF_PI, QUARTER_PI, THREE_HALF_PI, TWO_PI, INV_PI, FULL_CIRCLE,
                            PI_OVER_6, PI_OVER_4, PI_OVER_3, PI_OVER_2, DEG_TO_RAD, RAD_TO_DEG}),
                testing::ElementsAre(3.1415927410125732, 1.5707963705062866, 0.7853981852531433,
                                     4.71238899230957, 6.2831854820251465, 0.31830987334251404,
                                     6.2831854820251465, 0.5235987901687622, 0.7853981852531433,
                                     1.0471975803375244, 1.5707963705062866, 0.01745329238474369,
                                     57.2957763671875));
}

TEST(Constants, PhysicalOnesAreMantissaTimesPower) {
    EXPECT_THAT(
        (std::array{PHYS_AVOGADRO, PHYS_VACUUM_PERMEABILITY, PHYS_BOLTZMANN, PHYS_STEFAN_BOLTZMANN,
                    PHYS_PLANCK, PHYS_REDUCED_PLANCK, PHYS_PROTON_MASS, PHYS_NEUTRON_MASS,
                    PHYS_ELECTRON_MASS, PHYS_ATOMIC_MASS_UNIT, PHYS_MEV_IN_JOULES}),
        testing::ElementsAre(
            6.022141456604004F * 1e23F, 1.2566370964050293F * 1e-6F, 1.380650281906128F * 1e-23F,
            5.67037296295166F * 1e-8F, 6.62606954574585F * 1e-34F, 1.0545717477798462F * 1e-34F,
            1.6726216077804565F * 1e-27F, 1.6749000549316406F * 1e-27F, 9.109381675720215F * 1e-31F,
            1.6605387926101685F * 1e-27F, 1.6021764278411865F * 1e-13F));
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
