// SPDX-License-Identifier: MIT
#include "table_entries.h"

#include <cmath>
#include <limits>
#include <numbers>

using namespace quillon;

namespace {

// Read while the program loads, so before any test fills the tables.
const double BEFORE_THE_TABLES[] = {cosTD(0), sinTD(90), tanTD(45), cosTR(0), sinTR(1),
                                    tanTR(1), acosT(0),  asinT(1),  atanT(1), cosTD(NAN)};

using TrigTables = FilledTables;

template <typename Float>
Float bound(Float angle) {
    if constexpr (sizeof(Float) == sizeof(float))
        trig_bind_32(angle);
    else
        trig_bind(angle);
    return angle;
}

} // namespace

TEST(TrigTablesLifecycle, FillsAndClearsInAnyNumber) {
    for (const double value : BEFORE_THE_TABLES)
        EXPECT_EQ(0.0, value);
    __init_trig_tables();
    __init_trig_tables();
    EXPECT_EQ(static_cast<float>(std::atan(1.0)), atanT(1.0));
    __clear_trig_tables();
    __clear_trig_tables();
    EXPECT_EQ(0.0F, atanT(1.0));
    EXPECT_EQ(1.0, cosTD(0.0));
}

TEST_F(TrigTables, EveryEntryEqualsTheRuntimes) {
    expect_entries_of({[](double x) { return std::cos(x); }, [](double x) { return std::sin(x); },
                       [](double x) { return std::tan(x); }, [](double x) { return std::acos(x); },
                       [](double x) { return std::asin(x); },
                       [](double x) { return std::atan(x); }});
}

TEST_F(TrigTables, ReadsTheEntryThatTheRuleNames) {
    const auto cosine = [](int entry) { return cosTD(entry / 200.0); };
    EXPECT_EQ(0.0, sinTD(359.998)) << "rounds up to a whole turn";
    EXPECT_EQ(cosine(1), cosTD(0.0025)) << "halves go upward";
    EXPECT_EQ(0.0, sinTD(-0.001)) << "negative, less than a step";
    EXPECT_EQ(cosine(70001), cosTD(-10.0)) << "negative reads one nearer to zero";
    EXPECT_EQ(cosine(70001), cosTD(-1090.0)) << "three turns back";
    EXPECT_EQ(cosine(16000), cosTD(36e9 + 80.0)) << "beyond 32-bit steps";
    EXPECT_EQ(cosine(56001), cosTD(-36e9 - 80.0)) << "negative beyond 32-bit steps";
    EXPECT_EQ(cosTD(2.0 * 180.0 * INV_PI), cosTR(2.0)) << "radians by the 32-bit inverse of pi";
    EXPECT_EQ(tanTD(45.3), tanTD(45.25)) << "tangent to the nearest tenth";
    EXPECT_EQ(tanTD(350.1), tanTD(-10.0)) << "tangent of a negative angle";
    EXPECT_EQ(acosT(0.9999), acosT(0.99995)) << "arc cosine does not round up";
    EXPECT_EQ(HALF_PI, asinT(3.0)) << "arc sine above the range";
    EXPECT_EQ(1.5208379030227661, atanT(25.0)) << "arc tangent above the range";
    EXPECT_EQ(0.0, atanT(-0.000019)) << "arc tangent toward zero";
    EXPECT_EQ(1.0, cosTD(NAN)) << "not a number, cosine";
    EXPECT_EQ(atanT(-20.0), atanT(NAN)) << "not a number, arc tangent";
    EXPECT_NEAR(-22877332.43, tanTD(90.0), 0.01);
}

TEST_F(TrigTables, AnswersEveryArgument) {
    for (const double x : {std::numeric_limits<double>::infinity(), 1e300, 1e19, 4.7e16}) {
        for (const double argument : {x, -x}) {
            EXPECT_LE(std::abs(cosTD(argument)), 1.0) << argument;
            EXPECT_LE(std::abs(sinTR(argument)), 1.0) << argument;
            EXPECT_TRUE(std::isfinite(tanTR(argument))) << argument;
        }
        EXPECT_EQ(0.0F, acosT(x));
        EXPECT_EQ(-HALF_PI, asinT(-x));
        EXPECT_EQ(-atanT(x), atanT(-x));
    }
}

// The bounds that the header states, reached to nine tenths.
TEST_F(TrigTables, StaysWithinTheStatedErrors) {
    constexpr double degree = std::numbers::pi / 180.0;
    const auto tangent_error = [](double a) {
        return std::remainder(std::atan(tanTD(a)) - a * degree, std::numbers::pi);
    };

    const struct {
        const char* name;
        double (*error)(double);
        double from, to, limit;
    } sweeps[] = {
        {"cosTD", [](double a) { return cosTD(a) - std::cos(a * degree); }, 0, 360, 4.4e-5},
        {"sinTD", [](double a) { return sinTD(a) - std::sin(a * degree); }, -360, 0, 1.32e-4},
        {"cosTR", [](double r) { return cosTR(r) - std::cos(r); }, 0, TWO_PI, 4.4e-5},
        {"sinTR", [](double r) { return sinTR(r) - std::sin(r); }, 9990, 1e4, 4.4e-5 + 4.1e-4},
        {"tanTD", tangent_error, 0, 360, 8.8e-4},
        {"tanTD, negative", tangent_error, -360, 0, 2.63e-3},
        {"acosT", [](double x) { return acosT(x) - std::acos(x); }, -0.99, 0.99, 7.2e-4},
        {"asinT", [](double x) { return asinT(x) - std::asin(x); }, -1, 1, 0.01415},
        {"atanT", [](double x) { return atanT(x) - std::atan(x); }, -20, 20, 2.01e-5},
        {"atanT beyond", [](double x) { return atanT(x) - std::atan(x); }, 20, 1e4, 0.05},
    };

    constexpr int samples = 100003;
    for (const auto& sweep : sweeps) {
        double greatest = 0.0;
        for (int i = 0; i <= samples; ++i) {
            const double x = sweep.from + (sweep.to - sweep.from) * i / samples;
            greatest = std::max(greatest, std::abs(sweep.error(x)));
        }
        EXPECT_LE(greatest, sweep.limit) << sweep.name;
        EXPECT_GE(greatest, 0.9 * sweep.limit) << sweep.name;
    }
}

TEST(TrigBind, KnownValuesAndAnglesThatNeverSettle) {
    EXPECT_EQ(TWO_PI - 0.5, bound(-0.5));
    EXPECT_EQ(TWO_PI, bound<double>(TWO_PI)) << "not greater, so no step";
    EXPECT_EQ(TWO_PI, bound(3.0 * TWO_PI));
    EXPECT_EQ(0.0, bound(-3.0 * TWO_PI));
    EXPECT_EQ(TWO_PI, bound(-1e-30F)) << "rounded";
    for (const double angle : {1e17, -1e17, 1e300, -std::numeric_limits<double>::max()}) {
        EXPECT_TRUE(bound(angle) >= 0.0 && bound(angle) <= TWO_PI) << angle;
        const float narrow = std::copysign(3e38F, static_cast<float>(angle > 0.0) - 0.5F);
        EXPECT_TRUE(bound(narrow) >= 0.0F && bound(narrow) <= TWO_PI) << narrow;
    }
    EXPECT_TRUE(std::isnan(bound(-std::numeric_limits<float>::infinity())));
    EXPECT_TRUE(std::isnan(bound(std::numeric_limits<double>::quiet_NaN())));
}
