#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

class TrigTables : public testing::Test {
protected:
    static void SetUpTestSuite() { __init_trig_tables(); }

    static void TearDownTestSuite() { __clear_trig_tables(); }
};

} // namespace

// The plain reading of the tables, entry by entry, through the functions that read them.
TEST_F(TrigTables, InverseTablesEqualTheRuntimeInEveryEntry) {
    for (int i = 0; i <= 20000; ++i) {
        const auto x = static_cast<float>(i / 10000.0 - 1.0);
        const double between = (i + 0.5) / 10000.0 - 1.0;
        ASSERT_EQ(static_cast<float>(std::acos(static_cast<double>(x))), acosT(between)) << i;
        ASSERT_EQ(static_cast<float>(std::asin(static_cast<double>(x))), asinT(between)) << i;
    }
    for (int i = 0; i <= 2000000; ++i) {
        const auto x = static_cast<float>((i - 1000000) / 50000.0);
        const double steps = i - 1000000;
        const double within = (steps + (steps < 0 ? -0.5 : steps > 0 ? 0.5 : 0)) / 50000.0;
        ASSERT_EQ(static_cast<float>(std::atan(static_cast<double>(x))), atanT(within)) << i;
    }
}
