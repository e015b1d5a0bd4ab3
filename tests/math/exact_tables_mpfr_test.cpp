#include "quillon/math/trig_tables.h"
#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <cmath>
#include <cstdint>

using namespace quillon;

namespace {

using Function = int (*)(mpfr_t, const mpfr_t, mpfr_rnd_t);

// The correctly rounded value of a function. The argument keeps 53 bits, the result as many as
// `precision` says: 53 for an entry of a table of doubles, 24 for one of floats.
class Rounded {
public:
    Rounded(Function used, mpfr_prec_t precision) : function(used) {
        mpfr_init2(argument, 53);
        mpfr_init2(result, precision);
    }

    Rounded(const Rounded&) = delete;
    Rounded& operator=(const Rounded&) = delete;

    ~Rounded() { mpfr_clears(argument, result, static_cast<mpfr_ptr>(nullptr)); }

    double operator()(double x) {
        mpfr_set_d(argument, x, MPFR_RNDN);
        function(result, argument, MPFR_RNDN);
        return mpfr_get_d(result, MPFR_RNDN);
    }

private:
    Function function;
    mpfr_t argument;
    mpfr_t result;
};

class ExactTablesByMpfr : public testing::Test {
protected:
    static void SetUpTestSuite() { __init_trig_tables(); }

    static void TearDownTestSuite() { __clear_trig_tables(); }
};

constexpr double WIDE_PI = PI;

TEST_F(ExactTablesByMpfr, CosinesSinesAndTangentsAreRoundedCorrectly) {
    Rounded cosine(mpfr_cos, 53);
    Rounded sine(mpfr_sin, 53);
    Rounded tangent(mpfr_tan, 53);
    for (std::int32_t i = 0; i < trig::CIRCLE_ENTRIES; ++i) {
        const double angle = i * WIDE_PI / 36000.0;
        ASSERT_EQ(cosine(angle), cosTD(i / 200.0)) << "entry " << i;
        ASSERT_EQ(sine(angle), sinTD(i / 200.0)) << "entry " << i;
    }
    for (std::int32_t i = 0; i < trig::TANGENT_ENTRIES; ++i)
        ASSERT_EQ(tangent(i * WIDE_PI / 1800.0), tanTD(i / 10.0)) << "entry " << i;
}

TEST_F(ExactTablesByMpfr, ArcCosinesAndArcSinesAreRoundedCorrectly) {
    Rounded arc_cosine(mpfr_acos, 24);
    Rounded arc_sine(mpfr_asin, 24);
    for (std::int32_t i = 0; i <= 20000; ++i) {
        const double x = static_cast<float>(i / 10000.0 - 1.0);
        const double within = (i + 0.5) / 10000.0 - 1.0;
        ASSERT_EQ(arc_cosine(x), acosT(within)) << "entry " << i;
        ASSERT_EQ(arc_sine(x), asinT(within)) << "entry " << i;
    }
}

TEST_F(ExactTablesByMpfr, ArcTangentsAreRoundedCorrectly) {
    Rounded arc_tangent(mpfr_atan, 24);
    for (std::int32_t steps = 0; steps <= 1000000; ++steps) {
        const double expected = arc_tangent(static_cast<float>(steps / 50000.0));
        const double within = (steps + 0.5) / 50000.0;
        ASSERT_EQ(expected, atanT(within)) << steps << " steps above zero";
        ASSERT_EQ(-expected, atanT(-within)) << steps << " steps below zero";
    }
}

} // namespace
