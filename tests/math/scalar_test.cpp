#include "quillon/math/scalar.h"

#include "quillon/math/constants.h"
#include "quillon/math/trigonometry.h"
#include "quillon/platform/random.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

namespace {

constexpr std::int32_t int_lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t int_highest = std::numeric_limits<std::int32_t>::max();

// The state word that MT19937 turned into an output: its four tempering steps taken back.
std::uint32_t untempered(std::uint32_t y) {
    y ^= y >> 18;
    y ^= (y << 15) & 0xEFC60000;
    std::uint32_t word = y;
    for (int i = 0; i < 4; ++i)
        word = y ^ ((word << 7) & 0x9D2C5680);
    std::uint32_t state = word;
    for (int i = 0; i < 2; ++i)
        state = word ^ (state >> 11);
    return state;
}

} // namespace

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

TEST(Random, IntegersFillTheRangeAsTruncationHasIt) {
    std::array<int, 5> counts{};
    for (int i = 0; i < 50000; ++i) {
        const std::int32_t value = random_int(-2, 2);
        ASSERT_TRUE(value >= -2 && value <= 2) << value;
        ++counts[value + 2];
    }
    EXPECT_LE(counts[0], 1);
    EXPECT_NEAR(10000, counts[1], 600);
    EXPECT_NEAR(20000, counts[2], 600);
    EXPECT_NEAR(10000, counts[3], 600);
    EXPECT_NEAR(10000, counts[4], 600);
}

TEST(Random, BoundsHold) {
    bool low_half = false;
    bool high_half = false;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(3, random_int(3, 3));
        ASSERT_EQ(2, random_int(5, 2)) << "the bounds are not sorted";
        ASSERT_EQ(int_lowest, random_int(int_highest, int_lowest));
        const std::int32_t any = random_int(int_lowest, int_highest);
        low_half = low_half || any < -1000000000;
        high_half = high_half || any > 1000000000;
        const float single = random_float(-3.0F, 5.0F);
        ASSERT_TRUE(single >= -3.0F && single <= 5.0F) << single;
        const double wide = random_double(-3.0, 5.0);
        ASSERT_TRUE(wide >= -3.0 && wide < 5.0) << wide;
        ASSERT_EQ(7.5F, random_float(7.5F, 7.5F));
    }
    EXPECT_TRUE(low_half && high_half);
}

TEST(Random, RuntimeRandHasFifteenBitsAndTheHostsSeed) {
    const auto sequence = [] {
        std::srand(42);
        std::vector<int> values(2000);
        for (int& value : values)
            value = quillon::platform::runtime_rand();
        return values;
    };
    const std::vector<int> values = sequence();
    EXPECT_EQ(values, sequence());
    const auto [lowest, highest] = std::minmax_element(values.begin(), values.end());
    EXPECT_TRUE(*lowest >= 0 && *lowest < 200) << *lowest;
    EXPECT_TRUE(*highest <= 32767 && *highest > 32567) << *highest;
}

TEST(Bits, NextPowerOfTwo) {
    const std::uint32_t cases[][2] = {{0, 0},
                                      {1, 1},
                                      {2, 2},
                                      {3, 4},
                                      {5, 8},
                                      {8, 8},
                                      {0x7FFFFFFF, 0x80000000},
                                      {0x80000000, 0x80000000},
                                      {0x80000001, 0},
                                      {0xFFFFFFFF, 0}};
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(expected, next_largest_power_of_2(value)) << value;
}

TEST(Bits, MaskOfNamedBits) {
    EXPECT_EQ(0, construct_bitmask(-1, -1, -1, -1, -1, -1, -1, -1));
    EXPECT_EQ(0x81, construct_bitmask(0, 7, 7, -1, -1, -1, -1, -1)) << "a bit named twice";
    EXPECT_EQ(int_lowest | 1, construct_bitmask(-1, -1, -1, -1, -1, -1, 0, 31));
    EXPECT_EQ(2, construct_bitmask(32, 1, -2, 32767, -32768, -1, 64, 40)) << "no such bits";
}

TEST(Gauss, IsTheSeventhTaylorPolynomial) {
    EXPECT_EQ(1.0, gauss_near_zero_taylor7(0.0F, 3.0F));
    EXPECT_EQ(1.0 - 1.0 + 1 / 2.0 - 1 / 6.0 + 1 / 24.0 - 1 / 120.0 + 1 / 720.0 - 1 / 5040.0,
              gauss_near_zero_taylor7(2.0F, 1.0F));
    for (int i = 0; i <= 800; ++i) {
        const float a = static_cast<float>(i) / 100.0F;
        EXPECT_NEAR(std::exp(-a / 8.0), gauss_near_zero_taylor7(a, 2.0F), 2.5e-5) << a;
    }
    EXPECT_LT(gauss_near_zero_taylor7(100.0F, 1.0F), -1e8);
    EXPECT_TRUE(std::isnan(gauss_near_zero_taylor7(0.0F, 0.0F)));
}

TEST(TarnAngle, KnownDirections) {
    __init_trig_tables();

    const struct {
        const char* name;
        float x, y, angle;
    } cases[] = {
        {"right", 1, 0, 0.0F},
        {"up", 0, 1, quillon::HALF_PI},
        {"down", 0, -1, quillon::THREE_HALF_PI},
        {"nowhere", 0, 0, quillon::THREE_HALF_PI},
        {"left", -2, 0, quillon::PI},
        {"down to the right is negative", 1, -1, -0.7853982F},
        {"up to the left", -1, 1, 2.3561945F},
        {"steep saturates", 1, 100, 1.5208379F},
        {"not a number", NAN, -1, quillon::THREE_HALF_PI},
    };

    for (const auto& row : cases)
        EXPECT_FLOAT_EQ(row.angle, __tarn_extract_angle(row.x, row.y)) << row.name;
    EXPECT_EQ(quillon::PI - atanT(-3.0), __tarn_extract_angle(-1.0F, -3.0F));
    __clear_trig_tables();
}
