// SPDX-License-Identifier: MIT
#include "table_entries.h"

#include <mpfr.h>

using namespace quillon;

namespace {

// The correctly rounded value of a function. The argument keeps 53 bits, the result as many as
// `precision` says: 53 for an entry of a table of doubles, 24 for one of floats.
std::function<double(double)> rounded(int (*function)(mpfr_t, const mpfr_t, mpfr_rnd_t),
                                      mpfr_prec_t precision) {
    return [=](double x) {
        mpfr_t argument;
        mpfr_t result;
        mpfr_init2(argument, 53);
        mpfr_init2(result, precision);
        mpfr_set_d(argument, x, MPFR_RNDN);
        function(result, argument, MPFR_RNDN);
        const double value = mpfr_get_d(result, MPFR_RNDN);
        mpfr_clears(argument, result, static_cast<mpfr_ptr>(nullptr));
        return value;
    };
}

using ExactTables = FilledTables;

TEST_F(ExactTables, EveryEntryIsRoundedCorrectly) {
    expect_entries_of({rounded(mpfr_cos, 53), rounded(mpfr_sin, 53), rounded(mpfr_tan, 53),
                       rounded(mpfr_acos, 24), rounded(mpfr_asin, 24), rounded(mpfr_atan, 24)});
}

} // namespace
