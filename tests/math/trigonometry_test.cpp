#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

using quillon::HALF_PI;
using quillon::PI;
using quillon::TWO_PI;
using std::numbers::pi;

namespace {

// Read while the program loads, so before any test fills the tables.
const double before_the_tables[] = {cosTD(0), sinTD(90), tanTD(45), cosTR(0), sinTR(1),
                                    tanTR(1), acosT(0),  asinT(1),  atanT(1), cosTD(NAN)};

class TrigTables : public testing::Test {
protected:
    static void SetUpTestSuite() { __init_trig_tables(); }

    static void TearDownTestSuite() { __clear_trig_tables(); }
};

using Trigonometry = TrigTables;

template <class Float>
Float bound(Float angle) {
    if constexpr (sizeof(Float) == sizeof(float))
        trig_bind_32(angle);
    else
        trig_bind(angle);
    return angle;
}

template <class Float>
Float bound_by_steps(Float angle) {
    while (angle < 0)
        angle += TWO_PI;
    while (angle > TWO_PI)
        angle -= TWO_PI;
    return angle;
}

// Any bit pattern of a magnitude from 2^-20 up to `limit`, of either sign.
template <class Float>
Float random_angle(std::mt19937_64& generator, Float limit) {
    std::uniform_real_distribution<double> exponents(-20, std::log2(limit));
    const auto angle = static_cast<Float>(std::exp2(exponents(generator)));
    return generator() % 2 != 0 ? angle : -angle;
}

// Steps are taken one by one until they lead into the turn: what is bound before a step and after
// it is the same, and within the turn nothing changes, so by induction it is what all the steps
// give.
template <class Float>
void expect_every_step_to_keep_the_result(Float limit) {
    std::mt19937_64 generator(11);
    for (int i = 0; i < 200000; ++i) {
        Float angle = random_angle(generator, limit);
        for (int step = 0; step < 4 && (angle < 0 || angle > TWO_PI); ++step) {
            const Float next = angle < 0 ? angle + TWO_PI : angle - TWO_PI;
            if (next == angle)
                break;
            ASSERT_EQ(bound(next), bound(angle)) << std::hexfloat << angle;
            angle = next;
        }
        if (angle >= 0 && angle <= TWO_PI) {
            ASSERT_EQ(angle, bound(angle));
        }
    }
}

} // namespace

TEST(TrigTablesLifecycle, ZeroBeforeTheFirstFill) {
    for (const double value : before_the_tables)
        EXPECT_EQ(0.0, value);
}

TEST(TrigTablesLifecycle, FillsAndClearsInAnyNumber) {
    __init_trig_tables();
    __init_trig_tables();
    EXPECT_EQ(static_cast<float>(std::atan(1.0)), atanT(1.0));
    __clear_trig_tables();
    __clear_trig_tables();
    EXPECT_EQ(0.0F, atanT(1.0));
    EXPECT_EQ(1.0, cosTD(0.0));
    EXPECT_EQ(HALF_PI, asinT(1.0));
    __init_trig_tables();
    EXPECT_EQ(static_cast<float>(std::atan(1.0)), atanT(1.0));
    __clear_trig_tables();
}

// The runtime's functions in a plain loop, against every entry, through the functions that read
// them.
TEST_F(TrigTables, ForwardTablesEqualTheRuntimeInEveryEntry) {
    const double wide_pi = PI;
    for (int i = 0; i < 72000; ++i) {
        ASSERT_EQ(std::cos(i * wide_pi / 36000.0), cosTD(i / 200.0)) << i;
        ASSERT_EQ(std::sin(i * wide_pi / 36000.0), sinTD(i / 200.0)) << i;
    }
    for (int i = 0; i < 3600; ++i)
        ASSERT_EQ(std::tan(i * wide_pi / 1800.0), tanTD(i / 10.0)) << i;
}

TEST_F(TrigTables, InverseTablesEqualTheRuntimeInEveryEntry) {
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    for (int i = 0; i <= 20000; ++i) {
        const double x = static_cast<float>(i / 10000.0 - 1.0);
        const double inside = (i + 0.5) / 10000.0 - 1.0;
        ASSERT_EQ(bits(static_cast<float>(std::acos(x))), bits(acosT(inside))) << i;
        ASSERT_EQ(bits(static_cast<float>(std::asin(x))), bits(asinT(inside))) << i;
    }
    for (int i = -1000000; i <= 1000000; ++i) {
        const double x = static_cast<float>(i / 50000.0);
        const double inside = (i + (i < 0 ? -0.5 : i > 0 ? 0.5 : 0.0)) / 50000.0;
        ASSERT_EQ(bits(static_cast<float>(std::atan(x))), bits(atanT(inside))) << i;
    }
}

TEST_F(Trigonometry, ReadsTheEntryThatTheRuleNames) {
    const auto cosine = [](int entry) { return cosTD(entry / 200.0); };
    const double tangent_at_45_3 = tanTD(45.3);

    const struct {
        const char* name;
        double expected;
        double actual;
    } cases[] = {
        {"cosine of nothing", 1.0, cosTD(0.0)},
        {"a whole turn", 1.0, cosTD(360.0)},
        {"rounds up to a whole turn", 0.0, sinTD(359.998)},
        {"halves go upward", cosine(1), cosTD(0.0025)},
        {"below a half", cosine(0), cosTD(0.00249)},
        {"negative, less than a step", 0.0, sinTD(-0.001)},
        {"negative reads one nearer to zero", cosine(70001), cosTD(-10.0)},
        {"negative on a half", cosine(69999), cosTD(-10.0075)},
        {"three turns and ten degrees", cosine(2000), cosTD(1090.0)},
        {"three turns back", cosine(70001), cosTD(-1090.0)},
        {"beyond 32-bit steps", cosine(16000), cosTD(36e9 + 80.0)},
        {"negative beyond 32-bit steps", cosine(56001), cosTD(-36e9 - 80.0)},
        {"radians by the 32-bit inverse of pi",
         cosTD(2.0 * 180.0 * static_cast<double>(quillon::INV_PI)), cosTR(2.0)},
        {"sine in radians", sinTD(57.295), sinTR(1.0)},
        {"tangent in radians", tanTD(57.3), tanTR(1.0)},
        {"tangent to the nearest tenth", tangent_at_45_3, tanTD(45.25)},
        {"tangent below the half", tanTD(45.2), tanTD(45.2499)},
        {"tangent of a negative angle", tanTD(350.1), tanTD(-10.0)},
        {"tangent of a full turn", 0.0, tanTD(360.0)},
        {"arc cosine at the end", 0.0, acosT(1.0)},
        {"arc cosine below the range", PI, acosT(-2.0)},
        {"arc cosine does not round up", acosT(0.9999), acosT(0.99995)},
        {"arc sine above the range", HALF_PI, asinT(3.0)},
        {"arc tangent above the range", 1.5208379030227661, atanT(25.0)},
        {"arc tangent below the range", -1.5208379030227661, atanT(-25.0)},
        {"arc tangent toward zero", 0.0, atanT(-0.000019)},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.expected, row.actual) << row.name;
    EXPECT_NEAR(-22877332.43, tanTD(90.0), 0.01);
    EXPECT_NEAR(8.742e-8, tanTD(180.0), 1e-11);
}

TEST_F(Trigonometry, AnswersEveryArgument) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double huge[] = {infinity, 1e300, 1e19, 4.7e16};
    for (const double x : huge) {
        for (const double argument : {x, -x}) {
            EXPECT_LE(std::abs(cosTD(argument)), 1.0) << argument;
            EXPECT_LE(std::abs(sinTR(argument)), 1.0) << argument;
            EXPECT_TRUE(std::isfinite(tanTR(argument))) << argument;
        }
        EXPECT_EQ(0.0F, acosT(x));
        EXPECT_EQ(-HALF_PI, asinT(-x));
        EXPECT_EQ(atanT(20.0), atanT(x));
        EXPECT_EQ(atanT(-20.0), atanT(-x));
    }
    EXPECT_EQ(1.0, cosTD(NAN));
    EXPECT_EQ(0.0, sinTR(-infinity));
    EXPECT_EQ(PI, acosT(NAN));
    EXPECT_EQ(-HALF_PI, asinT(NAN));
    EXPECT_EQ(atanT(-20.0), atanT(NAN));
}

// The bounds that the header states.
TEST_F(Trigonometry, StaysWithinTheStatedErrors) {
    constexpr double degree = pi / 180.0;
    const auto cosine_error = [](double a) { return cosTD(a) - std::cos(a * degree); };
    const auto sine_error = [](double a) { return sinTD(a) - std::sin(a * degree); };
    const auto cosine_error_radians = [](double r) { return cosTR(r) - std::cos(r); };
    const auto sine_error_radians = [](double r) { return sinTR(r) - std::sin(r); };
    const auto angle_of_tangent = [](double a) {
        return std::remainder(std::atan(tanTD(a)) - a * degree, pi);
    };
    const auto angle_of_tangent_radians = [](double r) {
        return std::remainder(std::atan(tanTR(r)) - r, pi);
    };
    const auto arc_cosine_error = [](double x) { return acosT(x) - std::acos(x); };
    const auto arc_sine_error = [](double x) { return asinT(x) - std::asin(x); };
    const auto arc_tangent_error = [](double x) { return atanT(x) - std::atan(x); };

    const struct {
        const char* name;
        double (*error)(double);
        double from, to, limit;
    } sweeps[] = {
        {"cosTD", cosine_error, 0.0, 360.0, 4.4e-5},
        {"sinTD", sine_error, 0.0, 360.0, 4.4e-5},
        {"cosTD of many turns", cosine_error, 36000.0, 36360.0, 4.4e-5},
        {"cosTD, negative", cosine_error, -360.0, 0.0, 1.32e-4},
        {"sinTD, negative", sine_error, -360.0, 0.0, 1.32e-4},
        {"cosTR", cosine_error_radians, 0.0, TWO_PI, 4.4e-5},
        {"sinTR, negative", sine_error_radians, -TWO_PI, 0.0, 1.32e-4},
        {"sinTR of many turns", sine_error_radians, 9990.0, 10000.0, 4.4e-5 + 4.1e-8 * 10000.0},
        {"tanTD", angle_of_tangent, 0.0, 360.0, 8.8e-4},
        {"tanTD, negative", angle_of_tangent, -360.0, 0.0, 2.63e-3},
        {"tanTR", angle_of_tangent_radians, 0.0, TWO_PI, 8.8e-4 + 4.1e-8 * TWO_PI},
        {"acosT", arc_cosine_error, -0.99, 0.99, 7.2e-4},
        {"asinT", arc_sine_error, -0.99, 0.99, 7.2e-4},
        {"acosT at the ends", arc_cosine_error, -1.0, 1.0, 0.01415},
        {"asinT at the ends", arc_sine_error, -1.0, 1.0, 0.01415},
        {"atanT", arc_tangent_error, -20.0, 20.0, 2.01e-5},
        {"atanT beyond", arc_tangent_error, 20.0, 1e4, 0.05},
    };

    constexpr int samples = 100003;
    for (const auto& sweep : sweeps) {
        double greatest = 0.0;
        for (int i = 0; i <= samples; ++i) {
            const double x = sweep.from + (sweep.to - sweep.from) * i / samples;
            greatest = std::max(greatest, std::abs(sweep.error(x)));
        }
        EXPECT_LE(greatest, sweep.limit) << sweep.name;
        EXPECT_GE(greatest, 0.9 * sweep.limit) << sweep.name << " is better than it says";
    }
}

TEST(TrigBind, KnownValues) {
    EXPECT_EQ(TWO_PI - 0.5, bound(-0.5));
    EXPECT_EQ(TWO_PI, bound<double>(TWO_PI));
    EXPECT_EQ(TWO_PI, bound(2.0 * TWO_PI));
    EXPECT_EQ(0.0, bound<double>(-TWO_PI));
    EXPECT_FALSE(std::signbit(bound(-3.0 * TWO_PI)));
    EXPECT_TRUE(std::signbit(bound(-0.0))) << "no step is taken";
    EXPECT_EQ(TWO_PI, bound(-1e-30));
    EXPECT_EQ(TWO_PI, bound(TWO_PI));
    EXPECT_EQ(TWO_PI - 0.5F, bound(-0.5F));
}

TEST(TrigBind, EqualsStepByStepSubtraction) {
    std::mt19937_64 generator(5);
    for (int i = 0; i < 3000; ++i) {
        const auto angle = random_angle(generator, 2e4);
        ASSERT_EQ(bound_by_steps(angle), bound(angle)) << angle;
        const auto narrow = static_cast<float>(angle);
        ASSERT_EQ(bound_by_steps(narrow), bound(narrow)) << narrow;
    }
    for (const float angle : {1e6F, -1e6F, 16777216.0F, -123456789.0F, 134217728.0F})
        EXPECT_EQ(bound_by_steps(angle), bound(angle)) << angle;
}

TEST(TrigBind, EveryStepOfAnAngleThatSettlesKeepsTheResult) {
    expect_every_step_to_keep_the_result(134217728.0F); // from 2^27 on a step is lost to rounding
    expect_every_step_to_keep_the_result(72057594037927936.0);
}

TEST(TrigBind, ReturnsForAnglesThatNeverSettle) {
    for (const double angle : {1e17, -1e17, 1e300, -std::numeric_limits<double>::max()}) {
        EXPECT_GE(bound(angle), 0.0) << angle;
        EXPECT_LE(bound(angle), TWO_PI) << angle;
    }
    EXPECT_GE(bound(-3e38F), 0.0F);
    EXPECT_LE(bound(-3e38F), TWO_PI);
    EXPECT_TRUE(std::isnan(bound(std::numeric_limits<double>::infinity())));
    EXPECT_TRUE(std::isnan(bound(-std::numeric_limits<float>::infinity())));
    EXPECT_TRUE(std::isnan(bound(std::numeric_limits<double>::quiet_NaN())));
}
