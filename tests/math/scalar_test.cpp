#include "quillon/math/scalar.h"

#include "quillon/math/constants.h"
#include "quillon/math/trigonometry.h"
#include "quillon/platform/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

using namespace quillon;

namespace {

constexpr std::int32_t int_lowest = std::numeric_limits<std::int32_t>::min();

// The state word that MT19937 turned into an output: its four tempering steps taken back.
std::uint32_t untempered(std::uint32_t y) {
    y ^= y >> 18;
    y ^= (y << 15) & 0xEFC60000;
    std::uint32_t word = y;
    for (int i = 0; i < 4; ++i)
        word = y ^ ((word << 7) & 0x9D2C5680);
    return word ^ (word >> 11) ^ (word >> 22);
}

} // namespace

TEST(Constants, AreRoundedOnceFromTheNarrowPi) {
    EXPECT_EQ(3.1415927410125732, PI);
    EXPECT_EQ(4.71238899230957, THREE_HALF_PI);
    EXPECT_EQ(0.31830987334251404, INV_PI);
    EXPECT_EQ(57.2957763671875, RAD_TO_DEG);
    EXPECT_EQ(6.022141456604004F * 1e23F, PHYS_AVOGADRO);
    EXPECT_EQ(6.62606954574585F * 1e-34F, PHYS_PLANCK);
}

// One output a call, in sequence, whatever the other generators draw in between: each state word
// follows from three earlier ones by the generator's recurrence.
TEST(Random, DrawsFollowTheTwisterOneByOne) {
    std::vector<std::uint32_t> states;
    for (int i = 0; i < 1400; ++i) {
        states.push_back(untempered(static_cast<std::uint32_t>(random_double(0.0, 4294967296.0))));
        random_int(0, i);
        random_float(0.0F, 1.0F);
    }
    for (std::size_t k = 0; k + 624 < states.size(); ++k) {
        const std::uint32_t mixed = (states[k] & 0x80000000) | (states[k + 1] & 0x7FFFFFFF);
        const std::uint32_t twisted = (mixed >> 1) ^ (mixed % 2 != 0 ? 0x9908B0DF : 0);
        ASSERT_EQ(states[k + 397] ^ twisted, states[k + 624]) << k;
    }
}

TEST(Random, StaysInRangeAndTruncatesTowardZero) {
    std::array<int, 5> counts{};
    for (int i = 0; i < 50000; ++i) {
        ASSERT_EQ(2, random_int(5, 2)) << "the bounds are not sorted";
        ASSERT_EQ(int_lowest, random_int(std::numeric_limits<std::int32_t>::max(), int_lowest));
        const float single = random_float(-3.0F, 5.0F);
        ASSERT_TRUE(single >= -3.0F && single <= 5.0F) << single;
        const std::int32_t value = random_int(-2, 2);
        ASSERT_TRUE(value >= -2 && value <= 2) << value;
        ++counts[value + 2];
    }
    EXPECT_LE(counts[0], 1);
    EXPECT_NEAR(20000, counts[2], 600);
    for (const int fifth : {1, 3, 4})
        EXPECT_NEAR(10000, counts[fifth], 600) << fifth;
}

TEST(Random, RuntimeRandHasFifteenBits) {
    int highest = 0;
    for (int i = 0; i < 2000; ++i) {
        const int value = platform::runtime_rand();
        ASSERT_TRUE(value >= 0 && value <= 32767) << value;
        highest = std::max(highest, value);
    }
    EXPECT_GT(highest, 32567);
}

TEST(Bits, PowersOfTwoAndMasks) {
    constexpr std::uint32_t powers[][2] = {
        {0, 0},         {1, 1}, {5, 8}, {8, 8}, {0x7FFFFFFF, 0x80000000}, {0x80000000, 0x80000000},
        {0x80000001, 0}};
    for (const auto& [value, expected] : powers)
        EXPECT_EQ(expected, next_largest_power_of_2(value)) << value;
    EXPECT_EQ(0x81, construct_bitmask(0, 7, 7, -1, -1, -1, -1, -1)) << "a bit named twice";
    EXPECT_EQ(int_lowest | 1, construct_bitmask(-1, -1, -1, -1, -1, -1, 0, 31));
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

TEST(TarnAngle, KnownDirections) {
    __init_trig_tables();
    EXPECT_EQ(HALF_PI, __tarn_extract_angle(0.0F, 1.0F));
    EXPECT_EQ(THREE_HALF_PI, __tarn_extract_angle(0.0F, 0.0F));
    EXPECT_EQ(THREE_HALF_PI, __tarn_extract_angle(NAN, -1.0F));
    EXPECT_EQ(-atanT(1.0), __tarn_extract_angle(1.0F, -1.0F)) << "not wrapped";
    EXPECT_EQ(PI - atanT(-0.5), __tarn_extract_angle(-2.0F, -1.0F));
    EXPECT_EQ(1.5208379030227661, __tarn_extract_angle(1.0F, 100.0F)) << "saturates";
    __clear_trig_tables();
}
